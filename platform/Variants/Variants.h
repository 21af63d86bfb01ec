// Ways in which macOS may behave, where it is not known in which it does. Each variant is a way
// other than the layer's usual one; the test programs that could notice it run under it, too
// (scripts/variants).
//
// A process is under the variants that KRT9_PLATFORM_VARIANT names when it starts, separated by
// commas; an unknown name ends it with status 2 and one line. A test may select one for itself.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace platform_testing {

enum class Variant {
    // Signals: the process interrupts itself at an awkward moment, once.
    interruptInCall,     // in an accessibility call, once a request or a tick makes one
    interruptInTick,     // when a timer has fired, before its callback
    interruptAfterPort,  // when the first local port has been made

    // Screens.
    mainScreenElsewhere,  // the key window is on a screen that does not begin at the origin
    noMainScreen,         // +[NSScreen mainScreen] is nil

    // Bundles.
    freshBundleInfo,  // an information dictionary is read anew; usually once in a process's life

    // Message ports: a switch, not a variant. Nothing of the driver could fail under it; the tests
    // of a full socket need it.
    longPortQueue,  // a port's queue takes any number of messages; usually 5

    // Accessibility.
    missingIsNull,   // in the array of a read of several attributes what is missing is kCFNull;
                     // usually an AXValue with the error
    hangAtOnce,      // a call to an application that hangs fails at once with -25204; usually
                     // after the messaging time-out
    hangForASecond,  // or after a second at most

    // Events.
    privateModifiers,  // events of a private source leave alone what later events inherit

    // MIDI.
    offlineDevices,  // the enumeration begins with a device that is offline

    // Workspace.
    lateActivation,  // the notification of an activation comes a quarter of a second late, when the
                     // workspace has long known of it; usually they come together
};

bool IsOn(Variant variant);

std::optional<Variant> VariantNamed(std::string_view name);

// Puts the process under the variant for the lifetime of this object.
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

// Keeps the process from the variants for the life of this object, whatever it was started under:
// for tests that are about the usual behaviour.
class WithoutVariants {
  public:
    explicit WithoutVariants(const std::vector<Variant>& variants);
    ~WithoutVariants();
    WithoutVariants(const WithoutVariants&) = delete;
    WithoutVariants& operator=(const WithoutVariants&) = delete;

  private:
    std::vector<Variant> switchedOff_;
};

// For the layer: interrupts this process if the variant is on and this is the first such moment.
void InterruptOnce(Variant variant);

}  // namespace platform_testing
