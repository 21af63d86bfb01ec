#include "platform/DesktopLink/Session.h"

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFRunLoop.h>

#include <cmath>
#include <deque>
#include <utility>

#include "platform/DesktopLink/Transport.h"
#include "platform/Variants/Variants.h"

namespace desktop_link {

namespace {

struct Memory {
    bool asked = false;
    std::optional<Application> front;
    unsigned long frontRevision = 0;
    double messagingTimeout = Session{}.messagingTimeout;
    FrontApplicationHandler handler = nullptr;
};

Memory& Remembered() {
    static Memory memory;
    return memory;
}

void SetFront(const std::optional<Application>& application) {
    Remembered().front = application;
    ++Remembered().frontRevision;
}

// There is a handler: without one no notification is requested.
void Announce(const std::optional<Application>& activated) {
    Remembered().handler(activated);
}

struct Late {
    CFRunLoopTimerRef timer;  // owned
    std::optional<Application> activated;
};

// In the order in which they become due.
std::deque<Late>& LateOnes() {
    static std::deque<Late> late;
    return late;
}

void AnnounceLate(CFRunLoopTimerRef, void*) {
    const Late late = std::move(LateOnes().front());
    LateOnes().pop_front();
    Announce(late.activated);
    CFRelease(late.timer);
}

void Deliver(const Notification& notification) {
    SetFront(notification.activated);
    if (!platform_testing::IsOn(platform_testing::Variant::lateActivation)) {
        Announce(notification.activated);
        return;
    }
    constexpr CFTimeInterval kLateness = 0.25;
    const CFRunLoopTimerRef timer =
        CFRunLoopTimerCreate(kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + kLateness, 0, 0, 0,
                             AnnounceLate, nullptr);
    LateOnes().push_back({timer, notification.activated});
    CFRunLoopAddTimer(CFRunLoopGetMain(), timer, kCFRunLoopCommonModes);
}

void ForgetLateOnes() {
    for (const Late& late : LateOnes()) {
        CFRunLoopTimerInvalidate(late.timer);
        CFRelease(late.timer);
    }
    LateOnes().clear();
}

void Ask() {
    Memory& memory = Remembered();
    if (memory.asked) {
        return;
    }
    memory.asked = true;
    Transport& transport = CurrentTransport();
    if (memory.handler != nullptr) {
        transport.SetNotificationHandler(Deliver);
    }
    const std::optional<Reply> reply = transport.Exchange(Request{}, kSystemTimeout);
    if (reply && reply->session) {
        SetFront(reply->session->frontApplication);
        AdoptMessagingTimeout(reply->session->messagingTimeout);
    }
}

}  // namespace

const std::optional<Application>& FrontApplication() {
    Ask();
    return Remembered().front;
}

unsigned long FrontApplicationRevision() {
    Ask();
    return Remembered().frontRevision;
}

void ObserveFrontApplication(FrontApplicationHandler handler) {
    Memory& memory = Remembered();
    memory.handler = handler;
    if (memory.asked) {
        CurrentTransport().SetNotificationHandler(Deliver);
    }
    Ask();
}

double MessagingTimeout() {
    Ask();
    return Remembered().messagingTimeout;
}

void AdoptMessagingTimeout(double seconds) {
    const bool usable = std::isfinite(seconds) && seconds > 0;
    Remembered().messagingTimeout = usable ? seconds : Session{}.messagingTimeout;
}

void ForgetSession() {
    Memory& memory = Remembered();
    memory.asked = false;
    memory.messagingTimeout = Session{}.messagingTimeout;
    SetFront(std::nullopt);
    ForgetLateOnes();
}

}  // namespace desktop_link
