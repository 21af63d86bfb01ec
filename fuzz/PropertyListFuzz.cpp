// Property lists and language files of every format. The first byte chooses the options and who
// reads: the reader itself, the driver's translations, or a bundle.
//
// What must hold: no more time and memory than the bytes justify, the same bytes are read alike
// twice, and what is read is a well-formed tree.
#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <unordered_set>
#include <vector>

#include "VEKCommon/CLanguageSupport.h"
#include "fuzz/BundleStrings.h"
#include "fuzz/Check.h"
#include "fuzz/ObjectLedger.h"
#include "fuzz/StartUp.h"
#include "fuzz/Surroundings.h"
#include "platform/CoreFoundation/PropertyList/PropertyListReader.h"
#include "tests/support/OwnedObject.h"

namespace {

using Bytes = std::span<const std::uint8_t>;
using test_support::OwnedObject;

// Looks at every object of a tree once: parts may be shared.
class Inspection {
  public:
    void Inspect(CFTypeRef root) {
        open_.push_back(root);
        while (!open_.empty()) {
            CFTypeRef object = open_.back();
            open_.pop_back();
            fuzz::Check(object != nullptr, "a tree has no gaps");
            if (seen_.insert(object).second) {
                InspectOne(object);
            }
        }
    }

    std::size_t Count() const { return seen_.size(); }

  private:
    void InspectOne(CFTypeRef object) {
        const CFTypeID type = CFGetTypeID(object);
        if (type == CFStringGetTypeID()) {
            InspectString(static_cast<CFStringRef>(object));
        } else if (type == CFNumberGetTypeID()) {
            SInt32 value = 0;
            double real = 0;
            CFNumberGetValue(static_cast<CFNumberRef>(object), kCFNumberSInt32Type, &value);
            CFNumberGetValue(static_cast<CFNumberRef>(object), kCFNumberDoubleType, &real);
        } else if (type == CFDataGetTypeID()) {
            InspectData(static_cast<CFDataRef>(object));
        } else if (type == CFArrayGetTypeID()) {
            const auto array = static_cast<CFArrayRef>(object);
            for (CFIndex index = 0; index < CFArrayGetCount(array); ++index) {
                open_.push_back(CFArrayGetValueAtIndex(array, index));
            }
        } else if (type == CFDictionaryGetTypeID()) {
            InspectDictionary(static_cast<CFDictionaryRef>(object));
        }
    }

    static void InspectString(CFStringRef text) {
        char bytes[64];
        CFStringGetCString(text, bytes, sizeof bytes, CFStringGetSystemEncoding());
        CFStringGetCString(text, bytes, sizeof bytes, kCFStringEncodingUTF8);
        CFStringGetIntValue(text);
        CFStringHasPrefix(text, CFSTR("10.4"));
        fuzz::Check(CFStringCompare(text, text, 0) == kCFCompareEqualTo, "a text equals itself");
        const OwnedObject<CFStringRef> copy(CFStringCreateCopy(kCFAllocatorDefault, text));
        fuzz::Check(CFEqual(copy, text) && CFHash(copy) == CFHash(text), "a copy equals its text");
    }

    static void InspectData(CFDataRef data) {
        const auto size = static_cast<std::size_t>(CFDataGetLength(data));
        const auto bytes = std::make_unique<std::uint8_t[]>(size);
        CFDataGetBytes(data, CFRangeMake(0, CFDataGetLength(data)), bytes.get());
    }

    void InspectDictionary(CFDictionaryRef dictionary) {
        const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
        std::vector<const void*> keys(count);
        std::vector<const void*> values(count);
        CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
        for (std::size_t index = 0; index < count; ++index) {
            fuzz::Check(CFDictionaryGetValue(dictionary, keys[index]) == values[index],
                        "a key leads to its value");
            open_.push_back(keys[index]);
            open_.push_back(values[index]);
        }
    }

    std::vector<CFTypeRef> open_;
    std::unordered_set<CFTypeRef> seen_;
};

void Read(Bytes bytes, CFOptionFlags options) {
    const auto exact = std::make_unique<std::uint8_t[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), exact.get());
    const auto read = [&] {
        return property_list::ReadPropertyList({exact.get(), bytes.size()}, options);
    };
    const property_list::Document first = read();
    const property_list::Document second = read();
    fuzz::Check((first.root == nullptr) == (second.root == nullptr), "bytes are read alike twice");
    if (first.root == nullptr) {
        return;
    }
    fuzz::Check(first.format == second.format &&
                    CFGetTypeID(first.root.get()) == CFGetTypeID(second.root.get()),
                "bytes are read alike twice");
    Inspection one;
    Inspection other;
    one.Inspect(first.root.get());
    other.Inspect(second.root.get());
    // With the sharing in a binary list, a comparison can take unbounded time.
    if (first.format != kCFPropertyListBinaryFormat_v1_0) {
        fuzz::Check(CFEqual(first.root.get(), second.root.get()), "bytes are read alike twice");
    }
}

void ReadTranslations(Bytes bytes) {
    fuzz::WriteFile(fuzz::TranslationFolder() / "en.plist", bytes);
    const CLanguageSupport language("en");
    CLanguageSupport& support = *CLanguageSupport::sSelf;
    for (const CFStringRef key : {CFSTR("key"), CFSTR("CB"), CFSTR("")}) {
        const CFStringRef title = support.CopyStringForKey(key);
        if (!language.HasDictionary()) {
            fuzz::Check(CFEqual(title, key), "without translations a key is its own title");
            CFRelease(title);
        } else if (title != nullptr) {
            CFGetTypeID(title);  // alive as long as the dictionary
        }
    }
}

void ReadAsBundle(Bytes bytes, bool strings) {
    const auto folder = fuzz::PrivateFolder() / (strings ? "Strings.app" : "Info.app");
    fuzz::WriteFile(folder / (strings ? "Contents/Resources/en.lproj/Localizable.strings"
                                      : "Contents/Info.plist"),
                    bytes);
    fuzz::ReadBundle(folder);
}

}  // namespace

void fuzz::PrepareTarget() {
    PrivateFolder();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const Bytes bytes(data + 1, size - 1);
    fuzz::RunWithoutGrowth([&] {
        switch (*data % 8) {
            case 5:
                ReadTranslations(bytes);
                break;
            case 6:
            case 7:
                ReadAsBundle(bytes, *data % 8 == 6);
                break;
            default:
                Read(bytes, *data % 8 % 3);
                break;
        }
    });
    return 0;
}
