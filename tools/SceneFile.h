// The applications of a scene file, as `dump` writes one.
#pragma once

#include <string>

#include "tools/Arguments.h"
#include "tools/ElementList.h"

namespace krt9ctl {

// The elements of one application of the file: the one that --application or --pid names, else the
// one in front, else the only one. Children that the scene lists by their address, and values that
// its rules of misbehaviour give, are not among them.
//
// Throws std::runtime_error, with one line that names the file, when it cannot be read, is not
// written as a scene, or has no such application.
ElementList ReadSceneFile(const std::string& path, const Arguments& arguments);

}  // namespace krt9ctl
