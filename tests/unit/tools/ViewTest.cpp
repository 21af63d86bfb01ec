// The verb view: the page and the picture of an application, whatever its texts and frames are.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

#include "tests/support/ChildProcess.h"
#include "tests/support/Files.h"
#include "tests/support/Paths.h"
#include "tests/support/ScriptedDesktop.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/tools/Carried.h"
#include "tools/view/Drawing.h"

namespace krt9ctl {
namespace {

using test_support::ContentOf;
using test_support::ScriptedDesktop;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

const std::filesystem::path kData = KRT9_TEST_DATA;
const std::filesystem::path kRoot = kData.parent_path().parent_path();

TEST(View, OfThePictureInTheReadmeIsWhatTheCommandPrints) {
    EXPECT_EQ(Carried({"view", SceneFileOf("10.4.6"), "--svg"}).out,
              ContentOf((kRoot / "docs/pictures/editor-10.4.6.svg").string()));
    EXPECT_THAT(ContentOf((kRoot / "README.md").string()),
                HasSubstr("(docs/pictures/editor-10.4.6.svg)"));
}

TEST(View, ShowsARunningApplicationAsItsDump) {
    const ScriptedDesktop session(ContentOf(SceneFileOf("10.4.6")));
    const std::string page = Carried({"view", SceneFileOf("10.4.6")}).out;
    EXPECT_EQ(Carried({"view"}).out, page);
    EXPECT_EQ(Carried({"view", "--scene", SceneFileOf("10.4.6")}).out, page);
    EXPECT_THROW(Carried({"view", SceneFileOf("10.4"), "--scene", SceneFileOf("10.4")}),
                 UsageError);
}

TEST(View, ColoursReachAsTreeJudgesIt) {
    const std::string picture = Carried({"view", SceneFileOf("10.4.6"), "--svg"}).out;
    EXPECT_THAT(picture, HasSubstr(R"(<rect class="reached" x="10" y="476" width="28" height="22")"
                                   R"( data-line="+ /0/4/2/0/0 AXCheckBox _NS:159)"));
    EXPECT_THAT(picture, HasSubstr(R"(>159</text>)"));
    EXPECT_THAT(picture, testing::ContainsRegex("<rect class=\"unreached\"[^>]*_NS:352|_NS:393"));
    EXPECT_THAT(picture, testing::ContainsRegex("<rect class=\"nameless\"[^>]*AXRow"));
}

TEST(View, IsOneObjectForPrograms) {
    const Json page = Json::parse(Carried({"view", SceneFileOf("10.4")}, true).out);
    EXPECT_EQ(page["html"], Carried({"view", SceneFileOf("10.4")}).out);
    const Json picture = Json::parse(Carried({"view", SceneFileOf("10.4"), "--svg"}, true).out);
    EXPECT_EQ(picture["svg"], Carried({"view", SceneFileOf("10.4"), "--svg"}).out);
}

TEST(View, NamesNothingOutsideTheFile) {
    std::string page = Carried({"view", SceneFileOf("10.4"), SceneFileOf("10.4.6")}).out;
    const std::string nameSpace = "http://www.w3.org/2000/svg";
    for (std::size_t at = page.find(nameSpace); at != std::string::npos;
         at = page.find(nameSpace)) {
        page.erase(at, nameSpace.size());
    }
    for (const char* text :
         {"http:", "https:", "src=", "href", "url(", "@import", "<img", "<link"}) {
        EXPECT_THAT(page, Not(HasSubstr(text)));
    }
    EXPECT_THAT(page, HasSubstr("content=\"default-src 'none'; script-src 'sha256-"));
}

TEST(View, ShowsHostileTextsAsTexts) {
    const std::string file = (kData / "view/hostile.json").string();
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"view", file}, {"view", file, "--svg"}, {"view", file, file}}) {
        const std::string out = Carried(words).out;
        for (const char* text : {"<b>", "<script>window", "<img", "<iframe", "\"><b", "'>", "&{"}) {
            EXPECT_THAT(out, Not(HasSubstr(text))) << words.size();
        }
        EXPECT_THAT(out, HasSubstr("&lt;b&gt;bold&lt;/b&gt;"));
        EXPECT_THAT(out, HasSubstr("&lt;b&gt;x&lt;/b&gt;{{style}}")) << words.size();
    }
}

std::string Scene(const std::string& windows) {
    return R"({"applications": [{"bundleID": "a.b", "windows": [)" + windows + "]}]}";
}

// A file that is not well formed is not drawn at all.
TEST(View, IsWellFormedWhateverCharactersTheTextsHave) {
    const test_support::TemporaryFolder folder;
    const std::string file = folder.Write("scene.json", Scene(R"(
        {"AXRole": "AXWindow", "AXTitle": "\u0000\u0001\u000b\u001f\u007f\u0085\ufffe\uffff&<]]>",
         "AXPosition": [0, 0], "AXSize": [100, 100]})"));
    const std::string picture = Carried({"view", file, "--svg"}).out;
    EXPECT_THAT(picture,
                HasSubstr("\\x00\\x01\\x0b\\x1f\\x7f\\x85\xEF\xBF\xBD\xEF\xBF\xBD&amp;&lt;"));
    const auto parsed = test_support::RunProcess(
        "/usr/bin/python3",
        {"-c", "import sys, xml.dom.minidom; xml.dom.minidom.parse(sys.argv[1])",
         folder.Write("picture.svg", picture)});
    EXPECT_EQ(parsed.status, 0) << parsed.standardError;
}

Drawing DrawingOf(const std::string& windows) {
    const test_support::TemporaryFolder folder;
    const std::string file = folder.Write("scene.json", Scene(windows));
    const auto parsed = ParseCommandLine(TheGrammar(), {"view", file});
    const auto& invocation = std::get<Invocation>(parsed);
    std::ostringstream out;
    Output output({out, out}, false);
    Context context{output, 1};
    return Draw(std::get<Listing>(
                    ReadListing(Arguments(*invocation.verb, invocation.given), file, context)),
                {});
}

TEST(Drawing, HasWindowsOneBelowTheOtherAndElementsWithinThem) {
    const Drawing drawing = DrawingOf(R"(
        {"AXRole": "AXWindow", "AXPosition": [100, 50], "AXSize": [300, 200], "AXChildren": [
          {"AXRole": "AXButton", "AXIdentifier": "_NS:5", "AXFrame": [110, 70, 20.4, 10]}]},
        {"AXRole": "AXWindow", "AXPosition": [0, 0], "AXSize": [400, 100]})");
    ASSERT_THAT(drawing.windows, SizeIs(2));
    EXPECT_EQ(drawing.width, 400);
    EXPECT_LT(drawing.windows[0].frame.y + 200, drawing.windows[1].frame.y);
    EXPECT_EQ(drawing.height, drawing.windows[1].frame.y + 100);
    const DrawnElement& button = drawing.windows[0].elements.at(1);
    EXPECT_EQ(button.frame.x, 10);
    EXPECT_EQ(button.frame.y, 20);
    EXPECT_EQ(button.frame.width, 20);
    EXPECT_EQ(button.label, "5");
}

TEST(Drawing, HidesNoElementBehindALargerOne) {
    const Drawing drawing = DrawingOf(R"(
        {"AXRole": "AXWindow", "AXPosition": [0, 0], "AXSize": [300, 200], "AXChildren": [
          {"AXRole": "AXButton", "AXFrame": [10, 10, 20, 10]},
          {"AXRole": "AXGroup", "AXFrame": [0, 0, 300, 30]}]})");
    EXPECT_EQ(drawing.windows[0].elements.back().line, "  /0/0 AXButton");
}

TEST(Drawing, ListsWhatHasAnIdentifierAndNoFrame) {
    const Drawing drawing = DrawingOf(R"(
        {"AXRole": "AXWindow", "AXIdentifier": "w", "AXChildren": [
          {"AXRole": "AXButton", "AXIdentifier": "_NS:5", "AXFrame": [0, 0, 20, 10]}]},
        {"AXRole": "AXWindow", "AXPosition": [0, 0], "AXSize": [9, 9], "AXChildren": [
          {"AXRole": "AXButton", "AXIdentifier": "_NS:6"}, {"AXRole": "AXButton"},
          {"AXRole": "AXButton", "AXIdentifier": "_NS:7", "AXFrame": [0, 0, 0, 10]}]})");
    EXPECT_THAT(drawing.undrawn, ElementsAre("- /0 AXWindow w [a window]", "+ /0/0 AXButton _NS:5",
                                             "+ /1/0 AXButton _NS:6", "+ /1/2 AXButton _NS:7"));
    EXPECT_THAT(drawing.windows, SizeIs(1));
}

TEST(Drawing, CutsFramesThatNoScreenHas) {
    const Drawing drawing = DrawingOf(R"(
        {"AXRole": "AXWindow", "AXPosition": [-1e300, 1e300], "AXSize": [1e300, 1e18],
         "AXChildren": [
          {"AXRole": "AXButton", "AXIdentifier": "a", "AXPosition": [{"double": "nan"}, 0],
           "AXSize": [5, 5]},
          {"AXRole": "AXButton", "AXIdentifier": "b", "AXPosition": [0, 0],
           "AXSize": [{"double": "inf"}, 5]},
          {"AXRole": "AXButton", "AXIdentifier": "c", "AXFrame": [1e300, -1e300, 1e300, 5]}]})");
    EXPECT_EQ(drawing.width, 20000);
    EXPECT_THAT(drawing.undrawn, SizeIs(2));
    const Rectangle frame = drawing.windows[0].elements.at(0).frame;
    EXPECT_EQ(frame.width, 1000000);
}

TEST(Drawing, EndsAtALimitAndSaysSo) {
    Listing listing;
    listing.elements.resize(1);
    for (std::size_t i = 0; i < kMostDrawn + 3; ++i) {
        ListedElement element;
        element.role = i == 0 ? "AXWindow" : "AXButton";
        element.parent = i == 0 ? 0 : 1;
        element.frame = desktop_link::Rect{{0, 0}, {10, 10}};
        AddElement(listing.elements, element);
    }
    const Drawing drawing = Draw(listing, {});
    EXPECT_THAT(drawing.windows[0].elements, SizeIs(kMostDrawn));
    EXPECT_EQ(drawing.leftOut, 3U);
}

TEST(Drawing, OfNothingIsEmpty) {
    EXPECT_THAT(DrawingOf("").windows, IsEmpty());
    const test_support::TemporaryFolder folder;
    const std::string file = folder.Write("scene.json", Scene(""));
    EXPECT_THAT(Carried({"view", file}).out, HasSubstr("<h1>a.b</h1>"));
}

TEST(View, InABrowserShowsWhatIsPointedAtFindsAndFetchesNothing) {
    const std::string program = KRT9_BINARIES "/krt9ctl";
    const auto seen = test_support::RunProcess(
        "/usr/bin/python3",
        {(kRoot / "tests/unit/tools/view_in_browser.py").string(), program, SceneFileOf("10.2.3"),
         SceneFileOf("10.4.6"), (kData / "view/hostile.json").string()},
        {}, 120);
    EXPECT_EQ(seen.standardOutput, "");
    EXPECT_EQ(seen.status, 0) << seen.standardError;
}

}  // namespace
}  // namespace krt9ctl
