#include "tools/terminal/Terminal.h"

#include <fcntl.h>
#include <fmt/color.h>
#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace terminal {

bool IsTerminal(int descriptor) {
    return descriptor >= 0 && isatty(descriptor) == 1;
}

bool WantsColour(int descriptor) {
    const char* noColour = std::getenv("NO_COLOR");
    const char* kind = std::getenv("TERM");
    const bool isRefused = noColour != nullptr && *noColour != '\0';
    const bool isDumb = kind == nullptr || std::string_view(kind) == "dumb";
    return IsTerminal(descriptor) && !isRefused && !isDumb;
}

std::string MessagePrefix(std::string_view program, int descriptor, bool isFailure) {
    const auto style = isFailure ? fmt::emphasis::bold | fmt::fg(fmt::terminal_color::red)
                                 : fmt::text_style(fmt::emphasis::bold);
    return WantsColour(descriptor) ? fmt::format(style, "{}:", program)
                                   : fmt::format("{}:", program);
}

std::size_t Columns(int descriptor) {
    constexpr std::size_t kUsual = 80;
    constexpr std::size_t kFewest = 40;
    winsize size = {};
    if (!IsTerminal(descriptor) || ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) {
        return kUsual;
    }
    return std::max<std::size_t>(size.ws_col, kFewest);
}

void FillStandardDescriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            // The lowest free number is this one, because those below it are open.
            static_cast<void>(open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY));
        }
    }
}

}  // namespace terminal
