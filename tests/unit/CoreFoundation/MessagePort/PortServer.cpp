// Serves the name "port" for the tests until it is killed. The argument says how:
//   echo  answers every request with its own text
//   die   is killed by the first request
//   stop  stops at the first request, and echoes after it was continued
#include <CoreFoundation/CoreFoundation.h>

#include <csignal>
#include <cstdio>
#include <string_view>

namespace {

std::string_view behaviour;

CFDataRef Receive(CFMessagePortRef, SInt32, CFDataRef data, void*) {
    static bool isFirst = true;
    if (isFirst && behaviour == "die") {
        raise(SIGKILL);
    }
    if (isFirst && behaviour == "stop") {
        raise(SIGSTOP);
    }
    isFirst = false;
    return CFDataCreate(kCFAllocatorDefault, CFDataGetBytePtr(data), CFDataGetLength(data));
}

}  // namespace

int main(int argc, char** argv) {
    behaviour = argc > 1 ? argv[1] : "echo";
    const CFMessagePortRef port =
        CFMessagePortCreateLocal(nullptr, CFSTR("port"), Receive, nullptr, nullptr);
    if (port == nullptr) {
        std::fputs("the name cannot be served\n", stderr);
        return 1;
    }
    const CFRunLoopSourceRef source = CFMessagePortCreateRunLoopSource(nullptr, port, 0);
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopCommonModes);
    std::puts("serving");
    std::fflush(stdout);
    CFRunLoopRun();
}
