#include "tools/view/Page.h"

#include <fmt/format.h>

#include <algorithm>
#include <kainjow/mustache.hpp>

#include "tools/view/Templates.h"

namespace krt9ctl {

namespace mustache = kainjow::mustache;

namespace {

constexpr long kColumnGap = 20;

// What a browser computes of the script and the style sheet. A test names the values to write here
// after a change of either.
constexpr char kScriptDigest[] = "sha256-bjQM7/GfgsV3iGYTw/R/Fe5zDHMgoFa7NInqFGOBt/k=";
constexpr char kStyleDigest[] = "sha256-AT4o0hiRrXpbqfQHx1kpSah9NhxtT8zIwPI1V513e0Y=";

// U+FFFE and U+FFFF are no characters of XML. Other texts have no control characters (ShortText).
std::string Escaped(const std::string& text) {
    std::string escaped = mustache::html_escape(text);
    for (const char* each : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        for (std::size_t at = escaped.find(each); at != std::string::npos;
             at = escaped.find(each, at)) {
            escaped.replace(at, 3, "\xEF\xBF\xBD");
        }
    }
    return escaped;
}

std::string Number(long number) {
    return std::to_string(number);
}

void SetFrame(const Rectangle& frame, mustache::data& data) {
    data.set("x", Number(frame.x));
    data.set("y", Number(frame.y));
    data.set("width", Number(frame.width));
    data.set("height", Number(frame.height));
}

// A name that is not set would be looked up in what surrounds the element: each is set.
mustache::data DataOf(const DrawnElement& element) {
    mustache::data data;
    SetFrame(element.frame, data);
    data.set("line", element.line);
    data.set("style", element.style);
    data.set("pair", element.pair == 0 ? mustache::data(false)
                                       : mustache::data(std::to_string(element.pair)));
    data.set("label",
             element.label.empty() ? mustache::data(false) : mustache::data(element.label));
    data.set("labelX", Number(element.frame.x + 2));
    data.set("labelY", Number(element.frame.y + 9));
    return data;
}

mustache::data DataOf(const DrawnWindow& window) {
    mustache::data data;
    SetFrame(window.frame, data);
    data.set("title", window.title);
    data.set("titleY", Number(window.frame.y - 8));
    mustache::data elements{mustache::data::type::list};
    for (const DrawnElement& element : window.elements) {
        elements << DataOf(element);
    }
    data.set("elements", elements);
    return data;
}

mustache::data DataOf(const Drawing& drawing, long x, long top) {
    mustache::data data;
    SetFrame({x, 0, std::max(drawing.width, 1L), drawing.height + top + 1}, data);
    data.set("title", drawing.title);
    mustache::data windows{mustache::data::type::list};
    for (DrawnWindow window : drawing.windows) {
        window.frame.y += top;
        windows << DataOf(window);
    }
    data.set("windows", windows);
    mustache::data undrawn{mustache::data::type::list};
    for (const std::string& line : drawing.undrawn) {
        undrawn << mustache::data(line);
    }
    data.set("undrawn", undrawn);
    data.set("leftOut", drawing.leftOut == 0 ? mustache::data(false)
                                             : mustache::data(std::to_string(drawing.leftOut)));
    return data;
}

std::string Rendered(const char* text, mustache::data& data) {
    data.set("drawing", mustache::partial([] { return std::string(kWindowsTemplate); }));
    mustache::mustache page{std::string(text)};
    page.set_custom_escape(Escaped);
    return page.render(data);
}

}  // namespace

std::string PageOf(const std::vector<Drawing>& drawings) {
    mustache::data data;
    mustache::data columns{mustache::data::type::list};
    std::string title;
    for (const Drawing& drawing : drawings) {
        columns << DataOf(drawing, 0, 0);
        title += (title.empty() ? "" : " - ") + drawing.title;
    }
    data.set("columns", columns);
    data.set("title", title);
    data.set("style", kPageStyle);
    data.set("script", kScript);
    data.set("scriptDigest", kScriptDigest);
    data.set("styleDigest", kStyleDigest);
    return Rendered(kPageTemplate, data);
}

std::string PictureOf(const std::vector<Drawing>& drawings) {
    constexpr long kTitleHeight = 20;
    mustache::data data;
    mustache::data columns{mustache::data::type::list};
    long width = 0;
    long height = 0;
    for (const Drawing& drawing : drawings) {
        width += width == 0 ? 0 : kColumnGap;
        columns << DataOf(drawing, width, kTitleHeight);
        width += std::max(drawing.width, 1L);
        height = std::max(height, drawing.height + kTitleHeight + 1);
    }
    data.set("columns", columns);
    data.set("width", Number(width));
    data.set("height", Number(height));
    data.set("style", kStyleTemplate);
    return Rendered(kPictureTemplate, data);
}

}  // namespace krt9ctl
