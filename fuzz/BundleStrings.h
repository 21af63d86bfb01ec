// Reads a bundle's files as the frameworks do.
#pragma once

#include <string>

namespace fuzz {

// Reads the information dictionary and the strings of the bundle in `folder`.
void ReadBundle(const std::string& folder);

}  // namespace fuzz
