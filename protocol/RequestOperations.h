// What each request of the companion does, given its decoded body.
//
// An operation that has a reply returns its record, or nothing when it fails: a failure gets no
// reply, and there is no record for errors.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <optional>

#include "VEKCommon/OwnedReference.h"
#include "driver/CVEK_UserSpaceDriver.h"
#include "protocol/BoundedBytes.h"
#include "protocol/GeometryRecords.h"
#include "protocol/InputRecords.h"
#include "protocol/IntegerRecords.h"
#include "protocol/TargetWindowRequestSpec.h"
#include "protocol/WindowRequestSpec.h"

// The body of a request that names one element: its number, 4 bytes in host order, as the string
// under which the editing application knows it.
class ElementIdentifier {
  public:
    static constexpr unsigned int kSmallestSize = 4;  // bytes, and also the largest

    ElementIdentifier() = default;
    explicit ElementIdentifier(unsigned int number);  // zero-extended: never negative in the string

    static bool SkipOver(BoundedBytes& body) { return body.Skip(kSmallestSize); }
    static std::optional<std::size_t> CompleteSize(const unsigned char* bytes, std::size_t length) {
        return CompleteSizeOf<ElementIdentifier>(bytes, length);
    }
    void Deserialize(const unsigned char* src);

    CFStringRef Text() const { return text_.get(); }

  private:
    OwnedReference<CFStringRef> text_;
};

// The body of a request that needs none; whatever it comes with is ignored.
struct NoBody {
    static bool SkipOver(BoundedBytes&) { return true; }
    void Deserialize(const unsigned char*) {}
};

struct RequestOperations {
    using Driver = CVEK_UserSpaceDriver;

    static void RefreshAndObserve(Driver& driver, const SThreeIntSpec& request);
    static void ObserveClipSelection(Driver& driver, const NoBody&);
    static void ObserveTimelineTimecode(Driver& driver, const NoBody&);
    static void StopObserving(Driver& driver, const NoBody&);
    static void ForgetElementsAndClipName(Driver& driver, const NoBody&);
    static void DoNothing(Driver& driver, const NoBody&);

    static void PressButton(Driver& driver, const ElementIdentifier& element);
    static void SetNumberAsText(Driver& driver, const STwoIntSpec& request);
    static void SelectRadioButton(Driver& driver, const STwoIntSpec& request);
    static std::optional<SOneIntSpec> Value(Driver& driver, const ElementIdentifier& element);
    static std::optional<SOneIntSpec> TextAsNumber(Driver& driver,
                                                   const ElementIdentifier& element);
    static std::optional<SOneIntSpec> SelectedRadioButton(Driver& driver,
                                                          const ElementIdentifier& element);
    static std::optional<SPointSpec> Position(Driver& driver, const ElementIdentifier& element);
    static std::optional<SPointSpec> ParentPosition(Driver& driver,
                                                    const ElementIdentifier& element);

    static void PostKeystroke(Driver& driver, const SSendKeystrokeSpec& request);
    static void StartMouseGesture(Driver& driver, const SSendMouseSpec& request);
    static void ContinueMouseGesture(Driver& driver, const SSendMouseSpec& request);
    static void EndMouseGesture(Driver& driver, const SSendMouseSpec& request);
    static std::optional<SPointSpec> PointerPosition(Driver& driver, const NoBody&);

    static std::optional<SPointSizeSpec> WindowFrame(Driver& driver, SWindowRequestSpec& request);
    static std::optional<STargetPointSizeSpec> TargetWindowFrame(Driver& driver,
                                                                 STargetWindowRequestSpec& request);
};
