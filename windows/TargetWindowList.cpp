#include "windows/TargetWindowList.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

using Info = VEK_Driver_TargetWindowInfo;

constexpr std::size_t kNameBytes = sizeof(Info::windowName);  // terminator included
constexpr std::size_t kNameUnits = sizeof(Info::windowNameUnicode) / sizeof(UniChar);

// The start of each candidate. The two names with their terminators follow, then the UTF-16 units
// of both. Nothing is aligned.
struct __attribute__((packed)) Head {
    double firstValue;
    double secondValue;
    UInt16 nameUnits;
    UInt16 subWindowNameUnits;
    UInt8 kind;
    UInt8 flags;
};

// With the terminators of both names: a candidate without names takes 24 bytes here, and 25 on the
// wire.
constexpr std::size_t kSmallestCandidate = sizeof(Head) + 2;
static_assert(kSmallestCandidate < 25);

constexpr UInt8 kFirstFlag = 1;
constexpr UInt8 kHasSubWindow = 2;

std::string_view NameIn(const char (&name)[kNameBytes]) {
    return {name, strnlen(name, kNameBytes - 1)};
}

UInt16 UnitCount(unsigned long long length) {
    return static_cast<UInt16>(std::min<unsigned long long>(length, kNameUnits));
}

Head HeadOf(const Info& info) {
    const int flags = (info.firstFlag ? kFirstFlag : 0) | (info.hasSubWindow ? kHasSubWindow : 0);
    return {.firstValue = info.firstValue,
            .secondValue = info.secondValue,
            .nameUnits = UnitCount(info.windowNameLength),
            .subWindowNameUnits = UnitCount(info.subWindowNameLength),
            .kind = info.kind,
            .flags = static_cast<UInt8>(flags)};
}

// Copies packed bytes out, one field after the other.
class Reader {
  public:
    explicit Reader(const unsigned char* next) : next_(next) {}

    void Read(void* field, std::size_t size) {
        std::memcpy(field, next_, size);
        next_ += size;
    }

    void ReadName(char* name) { Read(name, NameSize()); }

    void SkipName() { next_ += NameSize(); }
    void Skip(std::size_t size) { next_ += size; }

    const unsigned char* Next() const { return next_; }

  private:
    std::size_t NameSize() const { return std::strlen(reinterpret_cast<const char*>(next_)) + 1; }

    const unsigned char* next_;
};

}  // namespace

TargetWindowList::TargetWindowList(const Info* infos, std::size_t count) {
    std::for_each_n(infos, count, [this](const Info& info) { Append(info); });
}

std::size_t TargetWindowList::PackedSize(const Info& info) {
    const Head head = HeadOf(info);
    return kSmallestCandidate + NameIn(info.windowName).size() + NameIn(info.subWindowName).size() +
           sizeof(UniChar) * (std::size_t{head.nameUnits} + head.subWindowNameUnits);
}

void TargetWindowList::Append(const Info& info) {
    const auto append = [this](const void* field, std::size_t size) {
        const auto* const start = static_cast<const unsigned char*>(field);
        bytes_.insert(bytes_.end(), start, start + size);
    };
    const auto appendName = [this, &append](std::string_view name) {
        append(name.data(), name.size());
        bytes_.push_back(0);
    };
    const Head head = HeadOf(info);
    append(&head, sizeof head);
    appendName(NameIn(info.windowName));
    appendName(NameIn(info.subWindowName));
    append(info.windowNameUnicode, sizeof(UniChar) * head.nameUnits);
    append(info.subWindowNameUnicode, sizeof(UniChar) * head.subWindowNameUnits);
    ++count_;
}

VEK_Driver_TargetWindowInfo TargetWindowList::operator[](std::size_t index) const {
    return *std::next(begin(), static_cast<std::ptrdiff_t>(index));
}

VEK_Driver_TargetWindowInfo TargetWindowList::Iterator::operator*() const {
    Reader packed(next_);
    Head head;
    Info info = {};
    packed.Read(&head, sizeof head);
    packed.ReadName(info.windowName);
    packed.ReadName(info.subWindowName);
    packed.Read(info.windowNameUnicode, sizeof(UniChar) * head.nameUnits);
    packed.Read(info.subWindowNameUnicode, sizeof(UniChar) * head.subWindowNameUnits);
    info.windowNameLength = head.nameUnits;
    info.subWindowNameLength = head.subWindowNameUnits;
    info.firstValue = head.firstValue;
    info.secondValue = head.secondValue;
    info.kind = head.kind;
    info.firstFlag = (head.flags & kFirstFlag) != 0;
    info.hasSubWindow = (head.flags & kHasSubWindow) != 0;
    return info;
}

TargetWindowList::Iterator& TargetWindowList::Iterator::operator++() {
    Reader packed(next_);
    Head head;
    packed.Read(&head, sizeof head);
    packed.SkipName();
    packed.SkipName();
    packed.Skip(sizeof(UniChar) * (std::size_t{head.nameUnits} + head.subWindowNameUnits));
    next_ = packed.Next();
    return *this;
}
