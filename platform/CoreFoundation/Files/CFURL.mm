#import <Foundation/Foundation.h>

#include <CoreFoundation/CFURL.h>
#include <fmt/format.h>

#include <string>
#include <string_view>

namespace {

// What a URL's path keeps as it is. A colon stays too, even in a first component.
bool StaysInPath(char c) {
    constexpr std::string_view kMarks = "-._~!$&'()*+,=@:/";
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           kMarks.find(c) != std::string_view::npos;
}

std::string PercentEscaped(std::string_view path) {
    std::string escaped;
    for (const char c : path) {
        if (StaysInPath(c)) {
            escaped.push_back(c);
        } else {
            escaped += fmt::format("%{:02X}", static_cast<unsigned char>(c));
        }
    }
    return escaped;
}

// With one slash at the end for a folder and none for a file; the root is a slash in both cases.
std::string WithEnding(std::string path, bool isDirectory) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    if (isDirectory && path.back() != '/') {
        path.push_back('/');
    }
    return path;
}

NSURL* CurrentFolder() {
    return [NSURL fileURLWithPath:[[NSFileManager defaultManager] currentDirectoryPath]
                      isDirectory:YES];
}

NSURL* NewURL(const std::string& text, NSURL* base) {
    return [[NSURL alloc] initWithString:[NSString stringWithUTF8String:text.c_str()]
                           relativeToURL:base];
}

}  // namespace

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef filePath,
                                       CFURLPathStyle pathStyle, Boolean isDirectory) {
    @autoreleasepool {
        const char* utf8 = [(NSString*)filePath UTF8String];
        if (pathStyle != kCFURLPOSIXPathStyle || utf8 == nullptr || *utf8 == '\0') {
            return nullptr;
        }
        const std::string path = PercentEscaped(WithEnding(utf8, isDirectory != 0));
        return (CFURLRef)(path.front() == '/' ? NewURL("file://" + path, nil)
                                              : NewURL(path, CurrentFolder()));
    }
}
