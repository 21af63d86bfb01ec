// Commands of the simulated desktop's script, made from the arguments of their verbs.
#pragma once

#include "tools/Arguments.h"
#include "tools/Output.h"

namespace krt9ctl::desktop_commands {

Json Activate(const Arguments& arguments);
Json Launch(const Arguments& arguments);
Json Quit(const Arguments& arguments);
Json Kill(const Arguments& arguments);
Json Hang(const Arguments& arguments);
Json Unhang(const Arguments& arguments);
Json Trust(const Arguments& arguments);
Json Set(const Arguments& arguments);
Json Press(const Arguments& arguments);
Json Element(const Arguments& arguments);
Json SelectClip(const Arguments& arguments);
Json Playhead(const Arguments& arguments);
Json Plug(const Arguments& arguments);
Json Unplug(const Arguments& arguments);
Json Pointer(const Arguments& arguments);
Json Log(const Arguments& arguments);
Json State(const Arguments& arguments);
Json Step(const Arguments& arguments);
Json Play(const Arguments& arguments);
Json Advance(const Arguments& arguments);
Json Stop(const Arguments& arguments);
Json Raw(const Arguments& arguments);

}  // namespace krt9ctl::desktop_commands
