// Each dump in scenes/recorded/ shows the driver what its .expected.json says.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/DriverInspector.h"
#include "tests/support/Files.h"
#include "tests/support/Paths.h"
#include "tests/unit/accessibility/EditorSession.h"

namespace {

const std::string kExpected = ".expected.json";

// The dumps' paths without ".json".
std::vector<std::string> Recordings() {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(KRT9_SCENES "/recorded")) {
        const std::string path = entry.path().string();
        if (path.ends_with(".json") && !path.ends_with(kExpected)) {
            found.push_back(path.substr(0, path.size() - 5));
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

class RecordedScene : public testing::TestWithParam<std::string> {};

TEST_P(RecordedScene, ShowsTheDriverWhatIsExpectedOfIt) {
    constexpr int kRound = 3;  // ticks in which each source of a clip's name has its turn
    const auto expected = nlohmann::json::parse(test_support::ContentOf(GetParam() + kExpected));
    EditorSession session(test_support::ContentOf(GetParam() + ".json"));
    DriverInspector::LocaleSent(session.Driver()) = true;
    DriverInspector::StatusValid(session.Driver()) = true;
    session->ObserveFCPXClipSelectionChange();
    session->ObserveFCPXTimelineTimecode();
    for (int tick = 0; tick < kRound; ++tick) {
        session->TimeoutCounter();
    }
    EXPECT_EQ(DriverInspector::Profile(session.Driver()), expected.at("profile"));
    EXPECT_THAT(session.Sent(),
                testing::UnorderedElementsAre(expected.at("clip").get<std::string>(),
                                              expected.at("timecode").get<std::string>()));
}

INSTANTIATE_TEST_SUITE_P(Scenes, RecordedScene, testing::ValuesIn(Recordings()),
                         [](const auto& recording) {
                             std::string name =
                                 std::filesystem::path(recording.param).filename().string();
                             std::replace_if(
                                 name.begin(), name.end(), [](char c) { return !isalnum(c); }, '_');
                             return name;
                         });

}  // namespace
