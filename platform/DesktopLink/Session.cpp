#include "platform/DesktopLink/Session.h"

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFRunLoop.h>

#include <cmath>
#include <deque>
#include <utility>

#include "platform/DesktopLink/Transport.h"
#include "platform/Testing/Variants.h"

namespace desktop_link {

namespace {

struct Memory {
    bool asked = false;
    std::optional<Application> front;
    unsigned long frontRevision = 0;
    double messagingTimeout = Session{}.messagingTimeout;
    void (*handler)() = nullptr;
};

Memory& Remembered() {
    static Memory memory;
    return memory;
}

void SetFront(const std::optional<Application>& application) {
    Remembered().front = application;
    ++Remembered().frontRevision;
}

void DeliverNow(const Notification& notification) {
    SetFront(notification.activated);
    Remembered().handler();  // there is one: without it no notification is asked for
}

std::deque<Notification>& Late() {
    static std::deque<Notification> late;
    return late;
}

void DeliverLate(CFRunLoopTimerRef timer, void*) {
    CFRelease(timer);
    if (Late().empty()) {
        return;  // the session was forgotten meanwhile
    }
    const Notification notification = std::move(Late().front());
    Late().pop_front();
    DeliverNow(notification);
}

void Deliver(const Notification& notification) {
    if (!platform_testing::IsOn(platform_testing::Variant::lateActivation)) {
        DeliverNow(notification);
        return;
    }
    constexpr CFTimeInterval kLateness = 0.25;
    Late().push_back(notification);
    CFRunLoopAddTimer(
        CFRunLoopGetMain(),
        CFRunLoopTimerCreate(kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + kLateness, 0, 0, 0,
                             DeliverLate, nullptr),
        kCFRunLoopCommonModes);
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

void ObserveFrontApplication(void (*handler)()) {
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
    Late().clear();
}

}  // namespace desktop_link
