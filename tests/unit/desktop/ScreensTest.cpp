// Which screen is the one with the key window.
#include <gtest/gtest.h>

#include "desktop/Desktop.h"

namespace desktop {
namespace {

using desktop_link::Operation;

// Two screens side by side, and in front an application with this window.
std::string Scene(const std::string& window) {
    return R"({"screens": [{"frame": [0, 0, 1440, 900]}, {"frame": [1440, -100, 800, 600]}],
        "front": "com.example.editor",
        "applications": [{"bundleID": "com.example.editor", "windows": [)" +
           window + "]}]}";
}

// The index that follows the screens, when it is not 0.
std::optional<std::int64_t> KeyScreen(const std::string& scene) {
    Desktop desktop(scene);
    desktop_link::Request request;
    request.operation = Operation::screens;
    const auto reply = desktop.Handle(1, request);
    if (!reply || reply->values.size() != 3) {
        return std::nullopt;
    }
    const auto* index = std::get_if<std::int64_t>(&reply->values.back().content);
    return index != nullptr ? std::optional(*index) : std::nullopt;
}

std::string Window(const std::string& position, const std::string& size) {
    return R"({"AXRole": "AXWindow", "AXMain": true, "AXPosition": )" + position +
           R"(, "AXSize": )" + size + "}";
}

TEST(KeyScreen, HoldsTheMiddleOfTheMainWindowInFront) {
    EXPECT_EQ(KeyScreen(Scene(Window("[1500, 0]", "[100, 100]"))), 1);
    EXPECT_EQ(KeyScreen(Scene(Window("[1400, 0]", "[100, 100]"))), 1) << "most of it lies there";
    EXPECT_EQ(KeyScreen(Scene(Window("[1380, 0]", "[100, 100]"))), std::nullopt);
    EXPECT_EQ(KeyScreen(Scene(Window("[1500, 480]", "[100, 100]"))), std::nullopt)
        << "below that screen there is none";
}

TEST(KeyScreen, IsTheFirstWithoutAWindowThatHasAPlace) {
    EXPECT_EQ(KeyScreen(Scene("")), std::nullopt);
    EXPECT_EQ(KeyScreen(Scene(R"({"AXRole": "AXWindow", "AXMain": true})")), std::nullopt);
    EXPECT_EQ(KeyScreen(Scene(R"({"AXRole": "AXWindow", "AXPosition": [1500, 0]})")), std::nullopt);
    EXPECT_EQ(KeyScreen(Scene(Window(R"({"error": -25204})", "[100, 100]"))), std::nullopt);
    EXPECT_EQ(KeyScreen(Scene(Window("[1500, 0]", R"({"error": -25204})"))), std::nullopt);
    EXPECT_EQ(KeyScreen(R"({"front": null, "screens": [{"frame": [0, 0, 10, 10]},
                                                       {"frame": [10, 0, 10, 10]}]})"),
              std::nullopt);
}

}  // namespace
}  // namespace desktop
