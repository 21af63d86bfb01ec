// Bundles on disk.
#include <filesystem>

#include "tests/support/Files.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/unit/desktop/Client.h"

namespace desktop {

namespace {

namespace fs = std::filesystem;
using test_support::ContentOf;
using testing::HasSubstr;

class BundleFolder : public testing::Test {
  protected:
    fs::path BundleOf(const Client& client, std::size_t index) const {
        return client.Do({{"command", "state"}})["applications"][index]["bundle"]
            .get<std::string>();
    }

    test_support::TemporaryFolder folder_;
};

TEST_F(BundleFolder, ApplicationWithInfoHasAnInfoPlist) {
    Desktop desktop(R"({"front": "com.example.editor", "applications": [{
        "bundleID": "com.example.editor", "name": "Editor", "pid": 501, "info": {
          "CFBundleShortVersionString": "10.4.6", "Text": "a < b & \"c\" > d\r\n",
          "Whole": -5, "Real": 0.5, "Yes": true, "No": false, "List": ["x", 1],
          "Inner": {"key&": "v"}}}]})",
                    {folder_.Path().string()});
    const Client client{desktop};
    const auto front = client.Ask(Operation::hello)->session->frontApplication;
    ASSERT_TRUE(front->bundlePath);
    EXPECT_EQ(fs::path(*front->bundlePath).filename(), "Editor.app");
    EXPECT_TRUE(fs::path(*front->bundlePath).is_absolute());
    EXPECT_EQ(ContentOf(fs::path(*front->bundlePath) / "Contents" / "Info.plist"),
              R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>CFBundleIdentifier</key>
	<string>com.example.editor</string>
	<key>CFBundleShortVersionString</key>
	<string>10.4.6</string>
	<key>Inner</key>
	<dict>
		<key>key&amp;</key>
		<string>v</string>
	</dict>
	<key>List</key>
	<array>
		<string>x</string>
		<integer>1</integer>
	</array>
	<key>No</key>
	<false/>
	<key>Real</key>
	<real>0.5</real>
	<key>Text</key>
	<string>a &lt; b &amp; "c" &gt; d&#13;
</string>
	<key>Whole</key>
	<integer>-5</integer>
	<key>Yes</key>
	<true/>
</dict>
</plist>
)");
}

TEST_F(BundleFolder, ApplicationWithoutInfoHasNoBundle) {
    Desktop desktop(R"({"front": "a", "applications": [{"bundleID": "a"}]})",
                    {folder_.Path().string()});
    EXPECT_FALSE(Client{desktop}.Ask(Operation::hello)->session->frontApplication->bundlePath);
    EXPECT_TRUE(fs::is_empty(folder_.Path()));
}

TEST_F(BundleFolder, IdentifierThatTheInfoGivesStays) {
    Desktop desktop(R"({"applications": [{"bundleID": "a", "info": {"CFBundleIdentifier": "b"}}]})",
                    {folder_.Path().string()});
    const std::string plist = ContentOf(BundleOf(Client{desktop}, 0) / "Contents" / "Info.plist");
    EXPECT_THAT(plist, HasSubstr("<string>b</string>"));
    EXPECT_THAT(plist, testing::Not(HasSubstr("<string>a</string>")));
}

TEST_F(BundleFolder, LocalizationsBecomeStringsFiles) {
    Desktop desktop(R"({"applications": [{"bundleID": "a", "name": "A", "info": {},
        "localizations": {"de": {"Timeline": "Zeitachse"}, "en": {}}}]})",
                    {folder_.Path().string()});
    const fs::path resources = BundleOf(Client{desktop}, 0) / "Contents" / "Resources";
    EXPECT_THAT(ContentOf(resources / "de.lproj" / "Localizable.strings"),
                HasSubstr("<key>Timeline</key>\n\t<string>Zeitachse</string>"));
    EXPECT_TRUE(fs::exists(resources / "en.lproj" / "Localizable.strings"));
}

TEST_F(BundleFolder, HostileNamesStayInTheFolder) {
    for (const char* name : {"../../escape", "/etc/passwd", "..", ".", "", "a/b\\u0000c"}) {
        const std::string scene = std::string(R"({"applications": [{"pid": 1, "name": ")") + name +
                                  R"(", "info": {}, "localizations": {"../../x": {}}}]})";
        Desktop desktop(scene, {folder_.Path().string()});
        const fs::path bundle = fs::canonical(BundleOf(Client{desktop}, 0));
        const std::string inside = fs::relative(bundle, fs::canonical(folder_.Path())).string();
        EXPECT_FALSE(inside.starts_with("..")) << name << " led to " << bundle;
        EXPECT_TRUE(fs::exists(bundle / "Contents" / "Info.plist")) << name;
    }
    EXPECT_TRUE(fs::is_empty(folder_.Path())) << "all is removed";
}

TEST_F(BundleFolder, VeryLongNameIsCutBetweenCharacters) {
    std::string name;
    for (int i = 0; i < 300; ++i) {
        name += "\xC3\xA9";
    }
    json scene = {{"applications", {{{"name", "x" + name}, {"info", json::object()}}}}};
    Desktop desktop(scene, {folder_.Path().string()});
    const std::string file = BundleOf(Client{desktop}, 0).stem().string();
    EXPECT_EQ(file, ("x" + name).substr(0, 99));
}

TEST_F(BundleFolder, TwoApplicationsOfOneNameHaveTwoBundles) {
    Desktop desktop(R"({"applications": [{"name": "A", "info": {"k": "1"}},
                                         {"name": "A", "info": {"k": "2"}}]})",
                    {folder_.Path().string()});
    const Client client{desktop};
    EXPECT_THAT(ContentOf(BundleOf(client, 0) / "Contents/Info.plist"), HasSubstr("<string>1<"));
    EXPECT_THAT(ContentOf(BundleOf(client, 1) / "Contents/Info.plist"), HasSubstr("<string>2<"));
}

TEST_F(BundleFolder, BundlesGoWithTheirApplicationAndWithTheDesktop) {
    {
        Desktop desktop(R"({"applications": [{"bundleID": "a", "info": {}}]})",
                        {folder_.Path().string()});
        const Client client{desktop};
        client.Do({{"command", "launch"},
                   {"application", {{"bundleID", "b"}, {"info", json::object()}}}});
        const fs::path launched = BundleOf(client, 1);
        EXPECT_TRUE(fs::exists(launched));
        client.Do({{"command", "quit"}, {"application", "b"}});
        EXPECT_FALSE(fs::exists(launched));
        EXPECT_TRUE(fs::exists(BundleOf(client, 0)));
    }
    EXPECT_TRUE(fs::is_empty(folder_.Path()));
}

TEST_F(BundleFolder, WhatKilledDesktopsLeftBehindCanBeRemoved) {
    fs::create_directories(folder_.Path() / "krt9-bundles-abcdef" / "501" / "A.app");
    fs::create_directories(folder_.Path() / "another");
    RemoveAbandonedBundles(folder_.Path().string());
    EXPECT_FALSE(fs::exists(folder_.Path() / "krt9-bundles-abcdef"));
    EXPECT_TRUE(fs::exists(folder_.Path() / "another"));
}

TEST_F(BundleFolder, FolderThatCannotBeWrittenIsAClearError) {
    const json scene = {{"applications", {{{"info", json::object()}}}}};
    try {
        const Desktop desktop(scene, {(folder_.Path() / "missing").string()});
        ADD_FAILURE() << "the desktop was made without a place for its bundle";
    } catch (const SceneError& error) {
        EXPECT_THAT(error.what(), HasSubstr("cannot make a folder in"));
    }
}

}  // namespace

}  // namespace desktop
