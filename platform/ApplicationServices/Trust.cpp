#include <ApplicationServices/AXUIElement.h>

#include "platform/DesktopLink/Session.h"
#include "platform/DesktopLink/Transport.h"

CFStringRef kAXTrustedCheckOptionPrompt = CFSTR("AXTrustedCheckOptionPrompt");

namespace {

bool MayPrompt(CFDictionaryRef options) {
    if (options == nullptr) {
        return false;
    }
    const CFTypeRef prompt = CFDictionaryGetValue(options, kAXTrustedCheckOptionPrompt);
    return prompt != nullptr && CFGetTypeID(prompt) == CFBooleanGetTypeID() &&
           CFBooleanGetValue(static_cast<CFBooleanRef>(prompt)) != 0;
}

}  // namespace

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
    desktop_link::Request request;
    request.operation = desktop_link::Operation::isTrusted;
    request.flag = MayPrompt(options);
    const auto reply =
        desktop_link::CurrentTransport().Exchange(request, desktop_link::kSystemTimeout);
    return reply && reply->error == 0 && reply->flag;
}
