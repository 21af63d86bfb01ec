// What the frameworks make of a bundle's files.
#pragma once

#include <string>

namespace fuzz {

// Reads the information dictionary and the strings of the bundle in `folder`.
void ReadBundle(const std::string& folder);

}  // namespace fuzz
