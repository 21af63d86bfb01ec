// What a target does once, before its first input; each target defines it.
#pragma once

namespace fuzz {

void PrepareTarget();

}  // namespace fuzz
