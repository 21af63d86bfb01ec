// Recorded sessions of a companion with the driver, one for each version of the editor that has
// identifiers of its own: what goes in and, byte for byte, what comes out.
//
// They are in the notation of all recordings (tools/recording/Recording.h), with the steps of
// Session.h. A person writes the steps and the remarks; the outcomes are written by
//
//     KRT9_RECORD_GOLDEN=1 build/bin/golden_streams.app/Contents/MacOS/golden_streams
//
// and are to be read before they are committed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/golden/Session.h"
#include "tests/support/EditorReleases.h"
#include "tests/support/Files.h"
#include "tests/support/InheritedFlags.h"

namespace {

using recording::kOutcome;
using recording::kStep;
using Lines = std::vector<std::string>;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::UnorderedElementsAreArray;

std::string PathOf(const std::string& version) {
    return KRT9_GOLDEN "/editor-" + version + ".txt";
}

Lines ReadLines(const std::string& path) {
    return test_support::LinesOf(test_support::ContentOf(path));
}

// The recording as it would be written today.
Lines Replay(const Lines& recording) {
    golden::Session session;
    Lines lines;
    for (const std::string& line : recording) {
        if (line.starts_with(kOutcome)) {
            continue;
        }
        lines.push_back(line);
        if (line.starts_with(kStep)) {
            try {
                const Lines outcome = session.Perform(line.substr(kStep.size()));
                lines.insert(lines.end(), outcome.begin(), outcome.end());
            } catch (const std::exception& problem) {
                ADD_FAILURE() << line << ": " << problem.what();
                return lines;
            }
        }
    }
    return lines;
}

void ExpectSame(const std::string& path, const Lines& recorded, const Lines& replayed) {
    const auto [before, now] =
        std::mismatch(recorded.begin(), recorded.end(), replayed.begin(), replayed.end());
    if (before == recorded.end() && now == replayed.end()) {
        return;
    }
    const auto isStep = [](const std::string& line) { return line.starts_with(kStep); };
    const auto step = std::find_if(std::make_reverse_iterator(now), replayed.rend(), isStep);
    ADD_FAILURE_AT(path.c_str(), static_cast<int>(before - recorded.begin()) + 1)
        << "the first difference, after the step\n  " << (step == replayed.rend() ? "" : *step)
        << "\nrecorded:\n  " << (before == recorded.end() ? "(the end)" : *before) << "\nnow:\n  "
        << (now == replayed.end() ? "(the end)" : *now);
}

class GoldenStreams : public testing::TestWithParam<test_support::EditorRelease> {};

TEST_P(GoldenStreams, RepeatLineByLine) {
    const std::string path = PathOf(GetParam().scene);
    const Lines recorded = ReadLines(path);
    const Lines replayed = Replay(recorded);
    if (std::getenv("KRT9_RECORD_GOLDEN") == nullptr) {
        Lines expected = recorded;
        std::transform(expected.begin(), expected.end(), expected.begin(),
                       test_support::WithInheritedFlags);
        ExpectSame(path, expected, replayed);
        return;
    }
    ASSERT_FALSE(HasFailure()) << "not recorded";
    std::ofstream file(path);
    for (const std::string& line : replayed) {
        file << line << '\n';
    }
    GTEST_SKIP() << "recorded";
}

// What occurs in a recording.
struct Content {
    explicit Content(const Lines& recording);

    std::set<std::string> requests;  // codes
    std::set<std::string> answered;  // codes of requests that got a reply
    std::set<std::string> messages;  // codes of the driver's own messages
    std::set<std::string> texts;     // those messages as they are written
    std::string desktop;             // its log
};

Content::Content(const Lines& recording) {
    std::string code;
    for (const std::string& line : recording) {
        const std::vector<std::string> words = recording::Words(line);
        if (!line.starts_with(kOutcome) || words.size() < 2) {
            continue;
        }
        if (words[0] == "request") {
            code = words[1];
            requests.insert(code);
        } else if (words[0] == "reply" && words[1] != "(none)") {
            answered.insert(code);
        } else if (words[0] == "message") {
            messages.insert(words[1]);
            texts.insert(line.substr(line.find(words[1])));
        } else if (words[0] == "desktop") {
            desktop += line + '\n';
        }
    }
}

// So that a new recording cannot lose what it is there for.
TEST_P(GoldenStreams, HoldEveryRequestReplyMessageAndEvent) {
    const Content content(ReadLines(PathOf(GetParam().scene)));
    std::vector<std::string> requests;
    std::vector<std::string> requestsWithReply;
    const auto add = [&](const std::string& code, std::string_view reply) {
        requests.push_back(code);
        if (reply != "NoReply") {
            requestsWithReply.push_back(code);
        }
    };
#define REQUEST(code, guard, body, operation, reply) add(#code, #reply);
#include "VEKCommon/Requests.def"
#undef REQUEST
    EXPECT_THAT(content.requests, IsSupersetOf(requests));
    EXPECT_THAT(content.answered, UnorderedElementsAreArray(requestsWithReply));
    EXPECT_THAT(content.messages, ElementsAre("JFSC", "JFTC", "JSLg", "Stus"));
    const auto different = [&content](const std::string& code) {
        return std::count_if(content.texts.begin(), content.texts.end(),
                             [&code](const auto& text) { return text.starts_with(code); });
    };
    EXPECT_GE(different("JFSC"), 6) << "names of clips";
    EXPECT_GE(different("JFTC"), 4) << "timecodes";
    for (const char* what :
         {R"("event":"keyDown")", R"("event":"keyUp")", R"("event":"mouseMoved")",
          R"("event":"leftMouseDown")", R"("event":"leftMouseDragged")", R"("event":"leftMouseUp")",
          R"("action":"AXPress")", R"("action":"AXConfirm")", R"("set":"AXValue")",
          R"("set":"AXMain")", R"("activated":)"}) {
        EXPECT_THAT(content.desktop, HasSubstr(what));
    }
}

INSTANTIATE_TEST_SUITE_P(Editor, GoldenStreams, testing::ValuesIn(test_support::kEditorReleases),
                         [](const testing::TestParamInfo<test_support::EditorRelease>& version) {
                             std::string name = version.param.scene;
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

}  // namespace
