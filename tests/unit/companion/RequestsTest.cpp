// The bodies that the companion's library writes are those of the driver's records.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "VEKCommon/MessageCodes.h"
#include "companion/KRT9Companion.h"
#include "protocol/InputRecords.h"
#include "protocol/IntegerRecords.h"
#include "protocol/TargetWindowRequestSpec.h"
#include "protocol/WindowRequestSpec.h"
#include "scenes/notation/Hex.h"

namespace krt9 {
namespace {

Bytes BytesOf(SMessageSpec&& record) {
    const unsigned char* bytes = record.Serialize();
    return {bytes, bytes + record.SerialBufferSize()};
}

TEST(Requests, HaveTheCodesOfTheDriversTable) {
    const GestureStep step;
    const std::vector<Request> all = {
        requests::RefreshAndObserve({}),
        requests::Press(1),
        requests::PostKey({}, true),
        requests::ParentPosition(1),
        requests::TextAsNumber(1),
        requests::Position(1),
        requests::Value(1),
        requests::SelectedButton(1),
        requests::PointerPosition(),
        requests::ObserveClip(),
        requests::ObserveTimecode(),
        requests::ContinueGesture(step),
        requests::EndGesture(step),
        requests::StartGesture(step),
        requests::Ping(),
        requests::SetNumber(1, 2),
        requests::SelectButton(1, 2),
        requests::StopObserving(),
        requests::FindTarget({}).value(),
        requests::FindWindow("", false),
        requests::ForgetLast(),
    };
    std::vector<Code> codes;
    for (const Request& request : all) {
        codes.push_back(request.code);
    }
    const std::vector<Code> table = {
#define REQUEST(code, ...) k##code,
#include "VEKCommon/Requests.def"
#undef REQUEST
    };
    EXPECT_EQ(codes, table);
}

TEST(Requests, OfAnElementCarryItsNumber) {
    for (const Request& request :
         {requests::Press(0x01020304), requests::Value(0x01020304),
          requests::TextAsNumber(0x01020304), requests::Position(0x01020304),
          requests::ParentPosition(0x01020304), requests::SelectedButton(0x01020304)}) {
        EXPECT_EQ(request.body, BytesOf(SOneIntSpec(0x01020304)));
    }
}

TEST(Requests, WithASecondNumberCarryElementAndNumber) {
    STwoIntSpec record;
    record.identifier = 59;
    record.value = 0xFFFFFFFE;
    EXPECT_EQ(requests::SetNumber(59, -2).body, BytesOf(std::move(record)));
    STwoIntSpec button;
    button.identifier = 59;
    button.value = 2;
    EXPECT_EQ(requests::SelectButton(59, 2).body, BytesOf(std::move(button)));
}

TEST(Requests, ToRefreshCarryOneFlagForEachPart) {
    EXPECT_EQ(requests::RefreshAndObserve({.frontApplication = true}).body,
              IntegersBody({1, 0, 0}));
    EXPECT_EQ(requests::RefreshAndObserve({.timecode = true}).body, IntegersBody({0, 1, 0}));
    EXPECT_EQ(requests::RefreshAndObserve({.clip = true}).body, IntegersBody({0, 0, 1}));
}

TEST(Requests, OfAKeyCarryCodeModifiersAndPress) {
    for (const bool press : {true, false}) {
        SSendKeystrokeSpec record;
        record.keyCode = 0x31;
        record.modifiers = kCommand | kControl;
        record.flag = press ? 1 : 0;
        EXPECT_EQ(requests::PostKey({0x31, kCommand | kControl}, press).body,
                  BytesOf(std::move(record)));
    }
}

TEST(Requests, OfAGestureHaveTheSameBody) {
    SSendMouseSpec record;
    record.x = 100;
    record.y = 200;
    record.button = kOption | kShift;
    record.flag = 0;
    const Bytes expected = BytesOf(std::move(record));
    const GestureStep step{100, 200, kOption | kShift, false};
    EXPECT_EQ(requests::StartGesture(step).body, expected);
    EXPECT_EQ(requests::ContinueGesture(step).body, expected);
    EXPECT_EQ(requests::EndGesture(step).body, expected);
}

TEST(Requests, OfAWindowCarryItsTitleInUtf8UpToAZero) {
    for (const bool partial : {true, false}) {
        EXPECT_EQ(requests::FindWindow("\xC3\x84\xE6\xB8\xAF", partial).body,
                  BytesOf(SWindowRequestSpec("\xC3\x84\xE6\xB8\xAF", partial)));
    }
    EXPECT_EQ(requests::FindWindow(std::string_view("a\0b", 3), false).body,
              BytesOf(SWindowRequestSpec("a", false)));
}

VEK_Driver_TargetWindowInfo Info(const char* name, const char* second = nullptr) {
    VEK_Driver_TargetWindowInfo info = {};
    const auto store = [](const char* text, char* bytes, UniChar* units,
                          unsigned long long& length) {
        std::strcpy(bytes, text);
        length = std::strlen(text);
        std::copy(text, text + length, units);
    };
    store(name, info.windowName, info.windowNameUnicode, info.windowNameLength);
    info.hasSubWindow = second != nullptr;
    if (second != nullptr) {
        store(second, info.subWindowName, info.subWindowNameUnicode, info.subWindowNameLength);
    }
    return info;
}

TEST(Requests, OfTargetWindowsAreTheRecordWithAllItsFields) {
    const VEK_Driver_TargetWindowInfo infos[] = {Info("Viewer"), Info("Browser", "Timeline"),
                                                 Info("Inspector")};
    EXPECT_EQ(requests::FindTarget(std::vector<Candidate>{
                                       {"Viewer", {}}, {"Browser", "Timeline"}, {"Inspector", {}}})
                  .value()
                  .body,
              BytesOf(STargetWindowRequestSpec(infos, 3)));
}

// The record's own size is too small for these fields.
TEST(Requests, OfOneTargetWindowWithASecondNameHoldAllOfIt) {
    const Bytes body =
        requests::FindTarget(std::vector<Candidate>{{"A", "Background"}}).value().body;
    EXPECT_EQ(STargetWindowRequestSpec::CompleteSize(body.data(), body.size()), body.size());
}

TEST(Requests, OfTargetWindowsTakeNamesThatFitTheSystemEncoding) {
    const auto sizeFor = [](const std::string& name) {
        const auto request = requests::FindTarget(std::vector<Candidate>{{name, {}}});
        return request ? std::optional(request->body.size()) : std::nullopt;
    };
    EXPECT_EQ(sizeFor("\xC3\x84"), 4 + 2 + 4 + 2 + 20U);
    EXPECT_EQ(sizeFor(std::string(255, 'a')), 4 + 256 + 4 + 510 + 20U);
    EXPECT_EQ(sizeFor(std::string(256, 'a')), std::nullopt);
    EXPECT_EQ(sizeFor("\xE6\xB8\xAF"), std::nullopt);
    EXPECT_EQ(sizeFor("\xFF"), std::nullopt);
    EXPECT_FALSE(requests::FindTarget(std::vector<Candidate>{{"a", "\xFF"}}));
}

TEST(Integers, AreReadAsTheyAreWritten) {
    EXPECT_THAT(IntegersOf(IntegersBody({1, 0xFFFFFFFE, 0x01020304})),
                testing::ElementsAre(1, 0xFFFFFFFE, 0x01020304));
    EXPECT_EQ(scene_notation::FormatHex(IntegersBody({0x01020304})), "04030201");
    EXPECT_THAT(IntegersOf(Bytes{1, 0, 0, 0, 2}), testing::ElementsAre(1));
}

}  // namespace
}  // namespace krt9
