// The applications of a scene file, as `dump` writes one.
#pragma once

#include <string>

#include "tools/Arguments.h"
#include "tools/Listing.h"

namespace krt9ctl {

// The elements of one application of the file: the one that --application or --pid names, else the
// one in front, else the only one. A child that is listed by its address is in the list where it is
// met first, as it is in that of an application that runs. What the scene's rules of misbehaviour
// would give is left out.
//
// Throws std::runtime_error, with one line that names the file, when it cannot be read, is not
// written as a scene, or has no such application.
Listing ReadSceneFile(const std::string& path, const Arguments& arguments);

}  // namespace krt9ctl
