// What the streams of a command-line program are connected to.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace terminal {

// False for a descriptor below 0.
bool IsTerminal(int descriptor);

// Only on a terminal that is not dumb, and never when NO_COLOR is set.
bool WantsColour(int descriptor);

// "krt9ctl:" as it stands before a message, with the descriptor's colours: red before a failure.
std::string MessagePrefix(std::string_view program, int descriptor, bool isFailure);

// The columns of the terminal, at least 40; 80 for anything else.
std::size_t Columns(int descriptor);

// A standard descriptor that is closed would be given to the next file or socket that is opened,
// which would then receive the output. Opens /dev/null in its place, for the other direction, so
// that reading and writing fail as before.
void FillStandardDescriptors();

}  // namespace terminal
