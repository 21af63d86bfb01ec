// Strings from bytes and bytes of strings, against measured cases.
#include <string>

#include "VEKCommon/OwnedReference.h"
#include "scenes/notation/Hex.h"
#include "tests/unit/CoreFoundation/Vectors.h"

namespace {

using nlohmann::json;
using vectors::Vector;

constexpr char kFile[] = "cfstring_getcstring.json";
constexpr std::size_t kGuard = 16;  // bytes after the buffer that must stay as they are
constexpr UInt8 kFill = 0xEE;

// A buffer of the case's size, with guard bytes after it.
struct GuardedBuffer {
    explicit GuardedBuffer(const json& input)
        : size(input.at("buffer_size")), bytes(size + kGuard, kFill) {}

    char* text() { return reinterpret_cast<char*>(bytes.data()); }
    std::string hex() const { return scene_notation::FormatHex({bytes.data(), size}); }
    bool guardUntouched() const {
        return std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(size), bytes.end(),
                           [](UInt8 byte) { return byte == kFill; });
    }

    std::size_t size;
    std::vector<UInt8> bytes;
};

// After a failure only the first byte of the buffer is defined.
std::string CompareBuffer(bool ok, const GuardedBuffer& buffer, const json& result) {
    if (!buffer.guardUntouched()) {
        return "wrote past the buffer";
    }
    if (!ok && buffer.size > 0 && buffer.bytes[0] != 0) {
        return "left no empty string after a failure";
    }
    if (ok != result.at("ok").get<bool>() ||
        (ok && buffer.hex() != result.at("buf").get<std::string>())) {
        return (ok ? "ok " : "not ok ") + buffer.hex();
    }
    return "";
}

std::string CheckGetCString(const Vector& vector) {
    const OwnedReference<CFStringRef> text(vectors::NewText(vector.input.at("text")));
    GuardedBuffer buffer(vector.input);
    const bool ok = CFStringGetCString(text.get(), buffer.text(), static_cast<CFIndex>(buffer.size),
                                       vector.input.at("encoding_value").get<CFStringEncoding>());
    return CompareBuffer(ok, buffer, vector.result);
}

std::string CheckFileSystemRepresentation(const Vector& vector) {
    const OwnedReference<CFStringRef> text(vectors::NewText(vector.input.at("text")));
    GuardedBuffer buffer(vector.input);
    const bool ok = CFStringGetFileSystemRepresentation(text.get(), buffer.text(),
                                                        static_cast<CFIndex>(buffer.size));
    return CompareBuffer(ok, buffer, vector.result);
}

std::string CheckLength(const Vector& vector) {
    const OwnedReference<CFStringRef> text(vectors::NewText(vector.input.at("text")));
    const CFIndex length = CFStringGetLength(text.get());
    return length == vector.result.at("length") ? "" : "got " + std::to_string(length);
}

std::string CheckCreateWithCString(const Vector& vector) {
    std::vector<UInt8> bytes = vectors::Bytes(vector.input.at("bytes"));
    bytes.push_back(0);
    const OwnedReference<CFStringRef> text(
        CFStringCreateWithCString(kCFAllocatorDefault, reinterpret_cast<const char*>(bytes.data()),
                                  vector.input.at("encoding_value").get<CFStringEncoding>()));
    return vectors::CompareText(text.get(), vector.result.at("string"));
}

std::string CheckRoundTrip(const Vector& vector) {
    std::vector<UInt8> bytes = vectors::Bytes(vector.input.at("bytes"));
    bytes.push_back(0);
    const CFStringEncoding encoding = CFStringGetSystemEncoding();
    const OwnedReference<CFStringRef> text(CFStringCreateWithCString(
        kCFAllocatorDefault, reinterpret_cast<const char*>(bytes.data()), encoding));
    const std::string difference = vectors::CompareText(text.get(), vector.result.at("string"));
    if (!difference.empty() || text == nullptr) {
        return difference;
    }
    char out[64];
    const bool ok = CFStringGetCString(text.get(), out, sizeof out, encoding);
    const std::string hex =
        scene_notation::FormatHex({reinterpret_cast<const UInt8*>(out), std::strlen(out) + 1});
    return ok && hex == vector.result.at("out").get<std::string>() ? "" : "back as " + hex;
}

std::string CheckCreateWithBytes(const Vector& vector) {
    const std::vector<UInt8> bytes = vectors::Bytes(vector.input.at("bytes"));
    const OwnedReference<CFStringRef> text(CFStringCreateWithBytes(
        kCFAllocatorDefault, bytes.data(), static_cast<CFIndex>(bytes.size()),
        vector.input.at("encoding_value").get<CFStringEncoding>(),
        vector.input.at("is_external").get<bool>()));
    return vectors::CompareText(text.get(), vector.result.at("string"));
}

std::string CheckGetBytes(const Vector& vector) {
    const OwnedReference<CFStringRef> text(vectors::NewText(vector.input.at("text")));
    GuardedBuffer buffer(vector.input);
    const json& range = vector.input.at("range");
    CFIndex used = 0;
    const CFIndex converted = CFStringGetBytes(
        text.get(), CFRangeMake(range.at(0), range.at(1)),
        vector.input.at("encoding_value").get<CFStringEncoding>(),
        vector.input.at("loss_byte").get<UInt8>(), vector.input.at("is_external").get<bool>(),
        buffer.bytes.data(), static_cast<CFIndex>(buffer.size), &used);
    if (converted == vector.result.at("converted") && used == vector.result.at("used") &&
        buffer.hex() == vector.result.at("buf").get<std::string>() && buffer.guardUntouched()) {
        return "";
    }
    return "converted " + std::to_string(converted) + " used " + std::to_string(used) + " " +
           buffer.hex();
}

const vectors::Checks kChecks = {
    {"getcstring-utf-8", CheckGetCString},
    {"getcstring-macroman", CheckGetCString},
    {"getcstring-ascii", CheckGetCString},
    {"getcstring-iso-latin-1", CheckGetCString},
    {"getcstring-utf-16", CheckGetCString},
    {"getcstring-other", CheckGetCString},
    {"getcstring-unknown", CheckGetCString},
    {"getcstring-long", CheckGetCString},
    {"getfilesystemrep", CheckFileSystemRepresentation},
    {"length", CheckLength},
    {"createwithcstring", CheckCreateWithCString},
    {"roundtrip-system", CheckRoundTrip},
    {"createwithbytes", CheckCreateWithBytes},
    {"getbytes", CheckGetBytes},
};

constexpr char kWritesPast[] =
    "answers true for a buffer of one byte and writes its NUL behind it; here it is false";
constexpr char kComposes[] =
    "was converted by ICU; macOS's own MacRoman takes a letter and its mark for the composed "
    "letter";
constexpr char kMark[] = "ICU drops U+FEFF; macOS's own MacRoman does not have it";
constexpr char kDecomposes[] = "was left composed; macOS decomposes file names";
constexpr char kSystemEncoding[] = "the system encoding was UTF-8; on macOS it is MacRoman";
constexpr char kLooksAhead[] = "ICU counts a character less when the buffer is full";
constexpr char kPairIsOneLoss[] =
    "ICU replaces a surrogate pair by one loss byte; macOS's own converter by two";

const vectors::Deviations kDeviations = {
    {"getcstring-utf-8-009", {"not ok 00", kWritesPast}},
    {"getcstring-utf-8-016", {"not ok 00", kWritesPast}},
    {"getcstring-utf-8-023", {"not ok 00", kWritesPast}},
    {"getcstring-utf-8-082", {"not ok 00", kWritesPast}},
    {"getfilesystemrep-008", {"not ok 00", kWritesPast}},
    {"getfilesystemrep-016", {"not ok 00", kWritesPast}},
    {"getfilesystemrep-022", {"not ok 00", kWritesPast}},
    {"getfilesystemrep-043", {"not ok 00", kWritesPast}},
    {"getcstring-macroman-031", {"ok 8e8c00", kComposes}},
    {"getcstring-macroman-032", {"ok 8e8c00ee", kComposes}},
    {"getcstring-macroman-033", {"ok 8e8c00eeee", kComposes}},
    {"getcstring-macroman-034", {"ok 8e8c00eeeeee", kComposes}},
    {"getcstring-macroman-035",
     {"ok "
      "8e8c00eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee"
      "eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee",
      kComposes}},
    {"getcstring-macroman-065", {"ok 9f00ee", kComposes}},
    {"getcstring-macroman-066",
     {"ok "
      "9f00eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee"
      "eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee",
      kComposes}},
    {"getcstring-macroman-072", {"not ok 00ee", kMark}},
    {"getcstring-macroman-073", {"not ok 00eeee", kMark}},
    {"getcstring-macroman-074",
     {"not ok "
      "00eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee"
      "eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee",
      kMark}},
    {"getfilesystemrep-011", {"not ok 00eeeeeeeeeeeeeeeeeeeeeeee", kDecomposes}},
    {"getfilesystemrep-013", {"ok 5a75cc88726963682065cc8179cc8800", kDecomposes}},
    {"getfilesystemrep-060",
     {"ok "
      "43616665cc8120e697a5f09f98802100eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee"
      "eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee",
      kDecomposes}},
    {"roundtrip-system-003", {"got \"\\u221a\\u00a9\"", kSystemEncoding}},
    {"roundtrip-system-004",
     {"got \"\\u00ca\\u00f3\\u2022\\u00ca\\u00fa\\u00a8\"", kSystemEncoding}},
    {"roundtrip-system-005", {"got \"\\uf8ff\\u00fc\\u00f2\\u00c4\"", kSystemEncoding}},
    {"roundtrip-system-006", {"got \"\\u02c7\"", kSystemEncoding}},
    {"roundtrip-system-007", {"got \"a\\u221a\"", kSystemEncoding}},
    {"roundtrip-system-008", {"got \"\\u00bf\\u00d8\"", kSystemEncoding}},
    {"roundtrip-system-011", {"got \"\\u00af\\u00e0\\u00c4\\u00c4\\u00c4\"", kSystemEncoding}},
    {"roundtrip-system-014", {"got \"\\u00c8\"", kSystemEncoding}},
    {"roundtrip-system-016", {"got \"\\u201a\\u00c7\"", kSystemEncoding}},
    {"roundtrip-system-017", {"got \"\\u00c4\"", kSystemEncoding}},
    {"roundtrip-system-018", {"got \"\\u00a0\\u20ac\\uf8ff\"", kSystemEncoding}},
    {"getbytes-021", {"converted 3 used 3 5a9f72", kLooksAhead}},
    {"getbytes-023", {"converted 3 used 3 5a9f72", kLooksAhead}},
    {"getbytes-101", {"converted 3 used 3 436166", kLooksAhead}},
    {"getbytes-055", {"converted 3 used 3 613f3f", kPairIsOneLoss}},
    {"getbytes-056",
     {"converted 4 used 4 "
      "613f3f62eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee",
      kPairIsOneLoss}},
    {"getbytes-104",
     {"converted 9 used 9 "
      "4361668e203f3f3f21eeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeeee",
      kPairIsOneLoss}},
};

class StringBytesVector : public testing::TestWithParam<Vector> {};

TEST_P(StringBytesVector, AgreesWithWhatWasMeasured) {
    vectors::Verify(GetParam(), kChecks, kDeviations);
}

INSTANTIATE_TEST_SUITE_P(Measured, StringBytesVector,
                         testing::ValuesIn(vectors::Covered(kFile, kChecks)), vectors::NameOf);

TEST(StringBytesVectors, AreAllCovered) {
    EXPECT_TRUE(vectors::Uncovered(kFile, kChecks).empty());
}

}  // namespace
