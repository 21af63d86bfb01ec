// The bodies of requests. Integers are 4 bytes, least significant first.
#include <algorithm>

#include "companion/KRT9Companion.h"

namespace krt9 {

namespace {

constexpr std::size_t kLongestName = 255;     // bytes
constexpr std::size_t kMostNameUnits = 1024;  // of UTF-16

void AppendInteger(std::uint32_t value, Bytes& bytes) {
    for (int shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
    }
}

void AppendText(std::string_view text, Bytes& bytes) {
    const std::string_view whole = text.substr(0, text.find('\0'));
    bytes.insert(bytes.end(), whole.begin(), whole.end());
    bytes.push_back(0);
}

void AppendUnits(const std::vector<std::uint16_t>& units, Bytes& bytes) {
    for (const std::uint16_t unit : units) {
        bytes.push_back(static_cast<std::uint8_t>(unit));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
    }
}

// The name in the system encoding, the number of its UTF-16 units, and these. False when it cannot
// be sent.
bool AppendName(const std::string& name, Bytes& bytes) {
    const auto encoded = ToSystemEncoding(name);
    const auto units = ToUtf16(name);
    if (!encoded || encoded->size() > kLongestName || units.size() > kMostNameUnits) {
        return false;
    }
    AppendText(*encoded, bytes);
    AppendInteger(static_cast<std::uint32_t>(units.size()), bytes);
    AppendUnits(units, bytes);
    return true;
}

bool AppendCandidate(const Candidate& candidate, Bytes& bytes) {
    if (!AppendName(candidate.name, bytes)) {
        return false;
    }
    constexpr int kCarried = 4;  // two values, a kind and a flag, which the driver does not use
    for (int i = 0; i < kCarried; ++i) {
        AppendInteger(0, bytes);
    }
    AppendInteger(candidate.subWindowName ? 1 : 0, bytes);
    return !candidate.subWindowName || AppendName(*candidate.subWindowName, bytes);
}

// What the record's size counts of a candidate: the bytes of a second name do not belong to it.
std::size_t CountedSize(const Candidate& candidate, std::size_t size) {
    return candidate.subWindowName
               ? size - ToSystemEncoding(*candidate.subWindowName).value_or("").size() - 1
               : size;
}

Request Bare(Code code) {
    return {code, {}};
}

Request OfElement(Code code, Element element) {
    return {code, IntegersBody({element})};
}

Request OfGesture(Code code, const GestureStep& step) {
    return {code, IntegersBody({step.x, step.y, step.modifiers, step.click ? 1U : 0U})};
}

}  // namespace

Bytes IntegersBody(std::initializer_list<std::uint32_t> integers) {
    Bytes body;
    for (const std::uint32_t integer : integers) {
        AppendInteger(integer, body);
    }
    return body;
}

std::vector<std::uint32_t> IntegersOf(std::span<const std::uint8_t> bytes) {
    std::vector<std::uint32_t> integers;
    for (; bytes.size() >= 4; bytes = bytes.subspan(4)) {
        integers.push_back(static_cast<std::uint32_t>(bytes[0]) |
                           static_cast<std::uint32_t>(bytes[1]) << 8 |
                           static_cast<std::uint32_t>(bytes[2]) << 16 |
                           static_cast<std::uint32_t>(bytes[3]) << 24);
    }
    return integers;
}

namespace requests {

Request RefreshAndObserve(const Refresh& what) {
    return {CodeOf("JAcF"), IntegersBody({what.frontApplication ? 1U : 0U, what.timecode ? 1U : 0U,
                                          what.clip ? 1U : 0U})};
}

Request Press(Element element) {
    return OfElement(CodeOf("JBtP"), element);
}

Request PostKey(const Key& key, bool press) {
    return {CodeOf("JCPK"), IntegersBody({key.code, key.modifiers, press ? 1U : 0U})};
}

Request ParentPosition(Element element) {
    return OfElement(CodeOf("JEPp"), element);
}

Request TextAsNumber(Element element) {
    return OfElement(CodeOf("JESI"), element);
}

Request Position(Element element) {
    return OfElement(CodeOf("JElP"), element);
}

Request Value(Element element) {
    return OfElement(CodeOf("JElV"), element);
}

Request SelectedButton(Element radioGroup) {
    return OfElement(CodeOf("JGRV"), radioGroup);
}

Request PointerPosition() {
    return Bare(CodeOf("JGlM"));
}

Request ObserveClip() {
    return Bare(CodeOf("JObE"));
}

Request ObserveTimecode() {
    return Bare(CodeOf("JObT"));
}

Request ContinueGesture(const GestureStep& step) {
    return OfGesture(CodeOf("JPMC"), step);
}

Request EndGesture(const GestureStep& step) {
    return OfGesture(CodeOf("JPME"), step);
}

Request StartGesture(const GestureStep& step) {
    return OfGesture(CodeOf("JPMS"), step);
}

Request Ping() {
    return Bare(CodeOf("JPth"));
}

Request SetNumber(Element textField, std::int32_t number) {
    return {CodeOf("JSIS"), IntegersBody({textField, static_cast<std::uint32_t>(number)})};
}

Request SelectButton(Element radioGroup, std::uint32_t index) {
    return {CodeOf("JSRV"), IntegersBody({radioGroup, index})};
}

Request StopObserving() {
    return Bare(CodeOf("JStO"));
}

Request FindWindow(std::string_view title, bool partial) {
    Request request{CodeOf("JWiP"), IntegersBody({partial ? 1U : 0U})};
    AppendText(title, request.body);
    return request;
}

Request ForgetLast() {
    return Bare(CodeOf("JXRs"));
}

// The record family gives the body the sum of these sizes: 4, and for each candidate the sizes of
// all candidates up to itself.
std::optional<Request> FindTarget(std::span<const Candidate> candidates) {
    Request request{CodeOf("JTWP"), IntegersBody({static_cast<std::uint32_t>(candidates.size())})};
    std::size_t recordSize = request.body.size();
    std::size_t sizeSoFar = 0;
    for (const Candidate& candidate : candidates) {
        const std::size_t before = request.body.size();
        if (!AppendCandidate(candidate, request.body)) {
            return std::nullopt;
        }
        sizeSoFar += CountedSize(candidate, request.body.size() - before);
        recordSize += sizeSoFar;
    }
    request.body.resize(std::max(recordSize, request.body.size()), 0);
    return request;
}

}  // namespace requests

}  // namespace krt9
