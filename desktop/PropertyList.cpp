#include "desktop/PropertyList.h"

#include "scenes/notation/Fields.h"

namespace desktop {

using namespace scene_notation;
using nlohmann::json;

namespace {

std::string Escaped(const std::string& text, const std::string& place) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '\r':  // a bare one would be read as a line feed
                escaped += "&#13;";
                break;
            default:
                if (static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n') {
                    throw SceneError(place, "a property list cannot contain a control character");
                }
                escaped += c;
        }
    }
    if (text.find("\xEF\xBF\xBE") != std::string::npos ||
        text.find("\xEF\xBF\xBF") != std::string::npos) {
        throw SceneError(place, "a property list cannot contain U+FFFE and U+FFFF");
    }
    return escaped;
}

void Write(const json& value, const std::string& place, const std::string& indentation,
           std::string& out);

void WriteObject(const json& object, const std::string& place, const std::string& indentation,
                 std::string& out) {
    out += indentation + "<dict>\n";
    for (const auto& [key, value] : object.items()) {
        const std::string inside = Place(place, key);
        out += indentation + "\t<key>" + Escaped(key, inside) + "</key>\n";
        Write(value, inside, indentation + "\t", out);
    }
    out += indentation + "</dict>\n";
}

void WriteArray(const json& array, const std::string& place, const std::string& indentation,
                std::string& out) {
    out += indentation + "<array>\n";
    for (std::size_t i = 0; i < array.size(); ++i) {
        Write(array[i], Place(place, i), indentation + "\t", out);
    }
    out += indentation + "</array>\n";
}

// Recursion is as deep as the shallow JSON.
void Write(const json& value, const std::string& place, const std::string& indentation,
           std::string& out) {
    switch (value.type()) {
        case json::value_t::string:
            out += indentation + "<string>" + Escaped(value.get_ref<const std::string&>(), place) +
                   "</string>\n";
            return;
        case json::value_t::boolean:
            out += indentation + (value.get<bool>() ? "<true/>\n" : "<false/>\n");
            return;
        case json::value_t::number_integer:
        case json::value_t::number_unsigned:
            out += indentation + "<integer>" + value.dump() + "</integer>\n";
            return;
        case json::value_t::number_float:
            out += indentation + "<real>" + value.dump() + "</real>\n";
            return;
        case json::value_t::array:
            WriteArray(value, place, indentation, out);
            return;
        case json::value_t::object:
            WriteObject(value, place, indentation, out);
            return;
        default:
            throw SceneError(place, "a property list cannot contain null");
    }
}

}  // namespace

std::string PropertyList(const json& root, const std::string& place) {
    std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\">\n";
    Write(root, place, "", text);
    return text + "</plist>\n";
}

}  // namespace desktop
