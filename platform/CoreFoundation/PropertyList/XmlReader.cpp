#include "platform/CoreFoundation/PropertyList/XmlReader.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

#include "platform/CoreFoundation/PropertyList/XmlScalars.h"

namespace property_list {

namespace {

enum class Element {
    kArray,
    kData,
    kDate,
    kDict,
    kFalse,
    kInteger,
    kKey,
    kPlist,
    kReal,
    kString,
    kTrue
};

constexpr std::array<std::pair<std::u16string_view, Element>, 11> kElements{
    {{u"array", Element::kArray},
     {u"data", Element::kData},
     {u"date", Element::kDate},
     {u"dict", Element::kDict},
     {u"false", Element::kFalse},
     {u"integer", Element::kInteger},
     {u"key", Element::kKey},
     {u"plist", Element::kPlist},
     {u"real", Element::kReal},
     {u"string", Element::kString},
     {u"true", Element::kTrue}}};

struct Tag {
    Element element;
    std::u16string_view name;
    bool isEmpty;  // <name/>
};

bool IsSpace(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

class Reader {
  public:
    Reader(std::u16string_view text, const ObjectMaker& make) : rest_(text), make_(make) {}

    Object ReadDocument() {
        if (!SkipToMarkup(Doctype::kAllowed)) {
            return nullptr;
        }
        return ReadElement(0).object;
    }

  private:
    // Elements within a <plist> are as deep as the <plist> itself.
    static constexpr int kMostPlists = kDeepestNesting;

    enum class Doctype { kAllowed, kRefused };
    struct Content {
        Object object;
        bool isKey = false;
    };

    bool At(std::u16string_view prefix) const { return rest_.starts_with(prefix); }

    void SkipSpace() {
        rest_.remove_prefix(
            static_cast<std::size_t>(std::ranges::find_if_not(rest_, IsSpace) - rest_.begin()));
    }

    bool SkipPast(std::u16string_view end) {
        const std::size_t position = rest_.find(end);
        if (position == std::u16string_view::npos) {
            return false;
        }
        rest_.remove_prefix(position + end.size());
        return true;
    }

    // An internal subset could define entities: refused.
    bool SkipDoctype() {
        const std::size_t end = rest_.find_first_of(u">[");
        if (end == std::u16string_view::npos || rest_[end] == u'[') {
            return false;
        }
        rest_.remove_prefix(end + 1);
        return true;
    }

    // Skips white space, comments and processing instructions; false when one of them has no end.
    bool SkipToMarkup(Doctype doctype) {
        for (;;) {
            SkipSpace();
            bool skipped = true;
            if (At(u"<!--")) {
                skipped = SkipPast(u"-->");
            } else if (At(u"<?")) {
                skipped = SkipPast(u"?>");
            } else if (doctype == Doctype::kAllowed && At(u"<!DOCTYPE")) {
                skipped = SkipDoctype();
            } else {
                return true;
            }
            if (!skipped) {
                return false;
            }
        }
    }

    // Attributes are ignored, and the first '>' ends the tag even within quotes.
    std::optional<Tag> ReadTag() {
        const std::size_t end = rest_.find(u'>');
        if (!At(u"<") || end == std::u16string_view::npos) {
            return std::nullopt;
        }
        std::u16string_view inside = rest_.substr(1, end - 1);
        rest_.remove_prefix(end + 1);
        const bool isEmpty = inside.ends_with(u'/');
        if (isEmpty) {
            inside.remove_suffix(1);
        }
        const std::u16string_view name = inside.substr(
            0, static_cast<std::size_t>(std::ranges::find_if(inside, IsSpace) - inside.begin()));
        const auto* found =
            std::ranges::find(kElements, name, &decltype(kElements)::value_type::first);
        if (found == kElements.end()) {
            return std::nullopt;
        }
        return Tag{found->second, found->first, isEmpty};
    }

    bool ReadEnd(const Tag& tag) {
        if (!At(u"</") || !rest_.substr(2).starts_with(tag.name)) {
            return false;
        }
        rest_.remove_prefix(2 + tag.name.size());
        SkipSpace();
        if (!At(u">")) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }

    // `depth` counts the arrays and dictionaries around the element.
    Content ReadElement(int depth) {
        const std::optional<Tag> tag = ReadTag();
        if (!tag) {
            return {};
        }
        Content content{ReadContent(*tag, depth), tag->element == Element::kKey};
        if (content.object != nullptr && !tag->isEmpty && !ReadEnd(*tag)) {
            return {};
        }
        return content;
    }

    Object ReadContent(const Tag& tag, int depth) {
        switch (tag.element) {
            case Element::kPlist:
                return tag.isEmpty ? nullptr : ReadPlist(depth);
            case Element::kArray:
                return tag.isEmpty ? make_.Array({}) : ReadArray(depth + 1);
            case Element::kDict:
                return tag.isEmpty ? EmptyDictionary() : ReadDictionary(depth + 1);
            case Element::kKey:
            case Element::kString:
                return tag.isEmpty ? make_.String({}) : ReadString();
            case Element::kTrue:
                return ObjectMaker::Boolean(true);
            case Element::kFalse:
                return ObjectMaker::Boolean(false);
            default:
                return tag.isEmpty ? nullptr : ReadScalar(tag.element);
        }
    }

    Object ReadPlist(int depth) {
        if (++plists_ > kMostPlists || !SkipToMarkup(Doctype::kRefused)) {
            return nullptr;
        }
        Object object = ReadElement(depth).object;
        return SkipToMarkup(Doctype::kRefused) ? std::move(object) : nullptr;
    }

    // True when another element follows in the container, false at its end or a malformed one.
    bool AtElement() { return SkipToMarkup(Doctype::kRefused) && At(u"<") && !At(u"</"); }

    Object ReadArray(int depth) {
        if (depth > kDeepestNesting) {
            return nullptr;
        }
        std::vector<Object> items;
        while (AtElement()) {
            Object item = ReadElement(depth).object;
            if (item == nullptr) {
                return nullptr;
            }
            items.push_back(std::move(item));
        }
        return make_.Array(items);
    }

    Object EmptyDictionary() const {
        return make_.Dictionary({}, {}, ObjectMaker::Duplicates::kLastWins);
    }

    Object ReadDictionary(int depth) {
        if (depth > kDeepestNesting) {
            return nullptr;
        }
        std::vector<Object> keys;
        std::vector<Object> values;
        while (AtElement()) {
            Content key = ReadElement(depth);
            if (key.object == nullptr || !key.isKey || !AtElement()) {
                return nullptr;
            }
            Object value = ReadElement(depth).object;
            if (value == nullptr) {
                return nullptr;
            }
            keys.push_back(std::move(key.object));
            values.push_back(std::move(value));
        }
        return ObjectMaker::UIDOrDictionary(
            make_.Dictionary(keys, values, ObjectMaker::Duplicates::kLastWins));
    }

    // Text up to the next markup other than a CDATA section, with the entities resolved. A
    // byte-order mark at its beginning is left out, as of all UTF-8.
    Object ReadString() {
        std::u16string text;
        for (;;) {
            const std::size_t plain = std::min(rest_.find_first_of(u"<&"), rest_.size());
            text.append(rest_.substr(0, plain));
            rest_.remove_prefix(plain);
            if (At(u"&")) {
                if (!AppendEntity(rest_, text)) {
                    return nullptr;
                }
            } else if (At(u"<![CDATA[")) {
                const std::u16string_view section = rest_.substr(9);
                if (!SkipPast(u"]]>")) {
                    return nullptr;
                }
                text.append(section.substr(0, section.size() - rest_.size() - 3));
            } else {
                return make_.String(
                    std::u16string_view(text).substr(text.starts_with(u'\uFEFF') ? 1 : 0));
            }
        }
    }

    // Text up to the next markup; entities have no meaning here.
    Object ReadScalar(Element element) {
        const std::u16string_view text = rest_.substr(0, rest_.find(u'<'));
        rest_.remove_prefix(text.size());
        switch (element) {
            case Element::kInteger:
                return ParseInteger(text);
            case Element::kReal:
                return ParseReal(text);
            case Element::kDate:
                return ParseDate(text);
            default:
                return ParseData(text, make_);
        }
    }

    std::u16string_view rest_;
    const ObjectMaker& make_;
    int plists_ = 0;
};

}  // namespace

Object ReadXml(std::u16string_view text, const ObjectMaker& make) {
    return Reader(text, make).ReadDocument();
}

}  // namespace property_list
