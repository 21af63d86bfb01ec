// What macOS is not known to do in one way only. Each variant is a way other than the layer's
// usual one; the programs that could notice run under it, too (scripts/variants).
//
// A process is under the variants that KRT9_PLATFORM_VARIANT names when it starts, separated by
// commas; a name that is none ends it with status 2 and one line. A test may put itself under one.
#pragma once

#include <optional>
#include <string_view>

namespace platform_testing {

enum class Variant {
    // Run loop.
    calloutPools,  // each callout has an autorelease pool around it; usually none has

    // Signals: the process interrupts itself at an awkward moment, once.
    interruptInCall,     // in an accessibility call, once a request or a tick makes one
    interruptInTick,     // when a timer has fired, before its callback
    interruptAfterPort,  // when the first local port has been made

    // Screens.
    mainScreenElsewhere,  // the key window is on a screen that does not begin at the origin
    noMainScreen,         // +[NSScreen mainScreen] is nil

    // Bundles.
    freshBundleInfo,  // an information dictionary is read anew; usually once in a process's life

    // Message ports.
    longPortQueue,  // a port's queue takes whatever comes; usually 5 messages

    // Accessibility.
    missingIsNull,   // in the array of a read of several attributes what is missing is kCFNull;
                     // usually an AXValue with the error
    hangForASecond,  // a call to an application that hangs fails after a second at most; usually
                     // after the messaging time-out

    // Events.
    privateModifiers,  // events of a private source leave alone what later events inherit

    // MIDI.
    offlineDevices,  // the enumeration begins with a device that is offline

    // Workspace.
    lateActivation,  // an activation is known, and its notification comes, a quarter of a second
                     // late
};

bool IsOn(Variant variant);

std::optional<Variant> VariantNamed(std::string_view name);

// Puts the process under the variant for the life of this object.
class UnderVariant {
  public:
    explicit UnderVariant(Variant variant);
    ~UnderVariant();
    UnderVariant(const UnderVariant&) = delete;
    UnderVariant& operator=(const UnderVariant&) = delete;

  private:
    const Variant variant_;
    const bool before_;
};

// For the layer: interrupts this process if the variant is on and this is the first such moment.
void InterruptOnce(Variant variant);

}  // namespace platform_testing
