#include "tests/unit/CoreFoundation/Collections/CollectionScript.h"

#include <set>
#include <vector>

#include "scenes/notation/Hex.h"
#include "tests/unit/CoreFoundation/Vectors.h"

using nlohmann::json;

namespace {

const CFArrayCallBacks* ArrayCallBacks(const json& name) {
    return name == "kCFType" ? &kCFTypeArrayCallBacks : nullptr;
}

const CFDictionaryKeyCallBacks* KeyCallBacks(const json& name) {
    return name == "kCFType"      ? &kCFTypeDictionaryKeyCallBacks
           : name == "copystring" ? &kCFCopyStringDictionaryKeyCallBacks
                                  : nullptr;
}

const CFDictionaryValueCallBacks* ValueCallBacks(const json& name) {
    return name == "kCFType" ? &kCFTypeDictionaryValueCallBacks : nullptr;
}

CFIndex Number(const json& step, std::size_t index) {
    return std::stol(step.at(index).get<std::string>());
}

// Steps that change no object, so that leaving them out changes no result of the others.
const std::set<std::string> kQuestionsNotProvided = {
    "hasvalue",  "countkey", "countvalue",          // of dictionaries
    "acontains", "acountof", "first",      "last",  // of arrays
};

}  // namespace

const std::map<std::string, CollectionScript::Operation>& CollectionScript::Operations() {
    using Self = CollectionScript;
    static const std::map<std::string, Operation> operations = {
        {"string", &Self::MakeText},
        {"mstring", &Self::MakeText},
        {"int", &Self::MakeNumber},
        {"double", &Self::MakeNumber},
        {"ptr", &Self::MakePointer},
        {"true", &Self::MakeConstant},
        {"false", &Self::MakeConstant},
        {"kcfnull", &Self::MakeConstant},
        {"const", &Self::MakeConstant},
        {"data", &Self::MakeData},
        {"data_null0", &Self::MakeData},
        {"mdata", &Self::MakeData},
        {"mdict", &Self::MakeDictionary},
        {"dict1", &Self::MakeDictionary},
        {"dict2", &Self::MakeDictionary},
        {"marray", &Self::MakeArray},
        {"array", &Self::MakeArray},
        {"array_null0", &Self::MakeArray},
        {"scopy", &Self::MakeCopy},
        {"set", &Self::ChangeDictionary},
        {"add", &Self::ChangeDictionary},
        {"remove", &Self::ChangeDictionary},
        {"removeall", &Self::ChangeDictionary},
        {"count", &Self::AskDictionary},
        {"get", &Self::AskDictionary},
        {"getif", &Self::AskDictionary},
        {"haskey", &Self::AskDictionary},
        {"keyis", &Self::AskDictionary},
        {"append", &Self::AppendToArray},
        {"acount", &Self::AskArray},
        {"at", &Self::AskArray},
        {"contents", &Self::AskArray},
        {"len", &Self::ChangeOrAskData},
        {"hex", &Self::ChangeOrAskData},
        {"bytes", &Self::ChangeOrAskData},
        {"dappend", &Self::ChangeOrAskData},
        {"rc", &Self::AskAnyObject},
        {"rcbig", &Self::AskAnyObject},
        {"equal", &Self::AskAnyObject},
        {"samehash", &Self::AskAnyObject},
        {"same", &Self::AskAnyObject},
        {"retain", &Self::RetainOrRelease},
        {"release", &Self::RetainOrRelease},
        {"slen", &Self::AskText},
    };
    return operations;
}

CollectionScript::~CollectionScript() {
    for (const auto& [name, count] : references_) {
        for (int reference = 0; reference < count; ++reference) {
            CFRelease(objects_.at(name));
        }
    }
}

bool CollectionScript::IsQuestion(Operation operation) {
    using Self = CollectionScript;
    return operation == &Self::AskDictionary || operation == &Self::AskArray ||
           operation == &Self::ChangeOrAskData || operation == &Self::AskAnyObject ||
           operation == &Self::AskText;
}

bool CollectionScript::CanRun(const json& steps) {
    bool asks = false;
    for (const json& step : steps) {
        const auto name = step.at(0).get<std::string>();
        const auto operation = Operations().find(name);
        if (operation != Operations().end()) {
            asks = asks || IsQuestion(operation->second);
        } else if (!kQuestionsNotProvided.contains(name)) {
            return false;
        }
    }
    return asks;
}

std::string CollectionScript::Run(const json& steps, const json& results) {
    for (std::size_t index = 0; index < steps.size(); ++index) {
        const json& step = steps.at(index);
        const auto operation = Operations().find(step.at(0).get<std::string>());
        if (operation == Operations().end()) {
            continue;
        }
        const json result = (this->*operation->second)(step);
        if (index < results.size() && result != results.at(index)) {
            return "step " + std::to_string(index) + " " + step.dump() + " gave " + result.dump() +
                   " instead of " + results.at(index).dump();
        }
    }
    return "";
}

const void* CollectionScript::Object(const Step& step, std::size_t index) const {
    const auto found = objects_.find(step.at(index).get<std::string>());
    return found == objects_.end() ? nullptr : found->second;
}

template <typename Reference>
Reference CollectionScript::Object(const Step& step, std::size_t index) const {
    return static_cast<Reference>(const_cast<void*>(Object(step, index)));
}

json CollectionScript::NameOf(const void* object) const {
    for (const auto& [name, candidate] : objects_) {
        if (candidate == object && object != nullptr) {
            return name;
        }
    }
    return nullptr;
}

void CollectionScript::Keep(const Step& step, const void* object, bool owned) {
    const auto name = step.at(1).get<std::string>();
    objects_[name] = object;
    references_[name] = owned && object != nullptr ? 1 : 0;
}

json CollectionScript::MakeText(const Step& step) {
    CFStringRef text = vectors::NewText(step.at(2));
    if (step.at(0) == "mstring") {
        CFMutableStringRef copy = CFStringCreateMutableCopy(kCFAllocatorDefault, 0, text);
        CFRelease(text);
        text = copy;
    }
    Keep(step, text);
    return nullptr;
}

json CollectionScript::MakeNumber(const Step& step) {
    if (step.at(0) == "double") {
        const double value = std::stod(step.at(2).get<std::string>());
        Keep(step, CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &value));
    } else {
        const SInt64 value = Number(step, 2);
        Keep(step, CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value));
    }
    return nullptr;
}

json CollectionScript::MakePointer(const Step& step) {
    constexpr int kAnyBase = 0;
    const auto address = std::stoul(step.at(2).get<std::string>(), nullptr, kAnyBase);
    Keep(step, reinterpret_cast<const void*>(address), false);
    return nullptr;
}

json CollectionScript::MakeConstant(const Step& step) {
    const auto kind = step.at(0).get<std::string>();
    Keep(step,
         kind == "true"    ? static_cast<CFTypeRef>(kCFBooleanTrue)
         : kind == "false" ? static_cast<CFTypeRef>(kCFBooleanFalse)
         : kind == "const" ? static_cast<CFTypeRef>(CFSTR("constant"))
                           : static_cast<CFTypeRef>(kCFNull),
         false);
    return nullptr;
}

json CollectionScript::MakeData(const Step& step) {
    if (step.at(0) == "mdata") {
        Keep(step, CFDataCreateMutable(kCFAllocatorDefault, Number(step, 2)));
        return nullptr;
    }
    if (step.at(0) == "data_null0") {
        Keep(step, CFDataCreate(kCFAllocatorDefault, nullptr, 0));
        return Object(step, 1) != nullptr;
    }
    const std::vector<UInt8> bytes = vectors::Bytes(step.at(2));
    Keep(step, CFDataCreate(kCFAllocatorDefault, bytes.data(), static_cast<CFIndex>(bytes.size())));
    return nullptr;
}

json CollectionScript::MakeDictionary(const Step& step) {
    if (step.at(0) == "mdict") {
        Keep(step, CFDictionaryCreateMutable(kCFAllocatorDefault, Number(step, 2),
                                             KeyCallBacks(step.at(3)), ValueCallBacks(step.at(4))));
        return nullptr;
    }
    std::vector<const void*> keys;
    std::vector<const void*> values;
    std::size_t next = 2;
    for (const std::size_t end = step.size() - 2; next < end; next += 2) {
        keys.push_back(Object(step, next));
        values.push_back(Object(step, next + 1));
    }
    Keep(step, CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(),
                                  static_cast<CFIndex>(keys.size()), KeyCallBacks(step.at(next)),
                                  ValueCallBacks(step.at(next + 1))));
    return nullptr;
}

json CollectionScript::MakeArray(const Step& step) {
    if (step.at(0) == "marray") {
        Keep(step, CFArrayCreateMutable(kCFAllocatorDefault, Number(step, 2),
                                        ArrayCallBacks(step.at(3))));
        return nullptr;
    }
    if (step.at(0) == "array_null0") {
        Keep(step, CFArrayCreate(kCFAllocatorDefault, nullptr, 0, &kCFTypeArrayCallBacks));
        return Object(step, 1) != nullptr;
    }
    std::vector<const void*> values;
    for (std::size_t index = 3; index < step.size(); ++index) {
        values.push_back(Object(step, index));
    }
    Keep(step, CFArrayCreate(kCFAllocatorDefault, values.data(),
                             static_cast<CFIndex>(values.size()), ArrayCallBacks(step.at(2))));
    return nullptr;
}

json CollectionScript::MakeCopy(const Step& step) {
    Keep(step, CFStringCreateCopy(kCFAllocatorDefault, Object<CFStringRef>(step, 2)));
    return nullptr;
}

json CollectionScript::ChangeDictionary(const Step& step) {
    const auto dictionary = Object<CFMutableDictionaryRef>(step, 1);
    const auto kind = step.at(0).get<std::string>();
    if (kind == "set") {
        CFDictionarySetValue(dictionary, Object(step, 2), Object(step, 3));
    } else if (kind == "add") {
        CFDictionaryAddValue(dictionary, Object(step, 2), Object(step, 3));
    } else if (kind == "remove") {
        CFDictionaryRemoveValue(dictionary, Object(step, 2));
    } else {
        CFDictionaryRemoveAllValues(dictionary);
    }
    return nullptr;
}

json CollectionScript::AskDictionary(const Step& step) {
    const auto dictionary = Object<CFDictionaryRef>(step, 1);
    const auto kind = step.at(0).get<std::string>();
    if (kind == "count") {
        return CFDictionaryGetCount(dictionary);
    }
    const void* const key = Object(step, 2);
    if (kind == "get") {
        return NameOf(CFDictionaryGetValue(dictionary, key));
    }
    if (kind == "haskey") {
        return static_cast<bool>(CFDictionaryGetValueIfPresent(dictionary, key, nullptr));
    }
    if (kind == "getif") {
        const void* value = this;
        const bool found = CFDictionaryGetValueIfPresent(dictionary, key, &value);
        return json{found, value == this ? json("untouched") : NameOf(value)};
    }
    std::vector<const void*> keys(static_cast<std::size_t>(CFDictionaryGetCount(dictionary)));
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), nullptr);
    return std::find(keys.begin(), keys.end(), key) != keys.end();
}

json CollectionScript::AppendToArray(const Step& step) {
    CFArrayAppendValue(Object<CFMutableArrayRef>(step, 1), Object(step, 2));
    return nullptr;
}

json CollectionScript::AskArray(const Step& step) {
    const auto array = Object<CFArrayRef>(step, 1);
    const auto kind = step.at(0).get<std::string>();
    if (kind == "acount") {
        return CFArrayGetCount(array);
    }
    if (kind == "at") {
        return NameOf(CFArrayGetValueAtIndex(array, Number(step, 2)));
    }
    json contents = json::array();
    for (CFIndex index = 0; index < CFArrayGetCount(array); ++index) {
        contents.push_back(NameOf(CFArrayGetValueAtIndex(array, index)));
    }
    return contents;
}

json CollectionScript::ChangeOrAskData(const Step& step) {
    const auto data = Object<CFMutableDataRef>(step, 1);
    const auto kind = step.at(0).get<std::string>();
    if (kind == "len") {
        return CFDataGetLength(data);
    }
    if (kind == "hex") {
        return scene_notation::FormatHex(
            {CFDataGetBytePtr(data), static_cast<std::size_t>(CFDataGetLength(data))});
    }
    if (kind == "bytes") {
        constexpr UInt8 kFill = 0xEE;
        constexpr std::size_t kShownBeyond = 2;
        const CFRange range = CFRangeMake(Number(step, 2), Number(step, 3));
        std::vector<UInt8> buffer(static_cast<std::size_t>(range.length) + kShownBeyond, kFill);
        CFDataGetBytes(data, range, buffer.data());
        return scene_notation::FormatHex({buffer.data(), buffer.size()});
    }
    const std::vector<UInt8> bytes = vectors::Bytes(step.at(2));
    CFDataAppendBytes(data, bytes.data(), static_cast<CFIndex>(bytes.size()));
    return nullptr;
}

json CollectionScript::AskAnyObject(const Step& step) {
    constexpr CFIndex kBig = 1000000;
    const auto kind = step.at(0).get<std::string>();
    if (kind == "rc") {
        return CFGetRetainCount(Object(step, 1));
    }
    if (kind == "rcbig") {
        return CFGetRetainCount(Object(step, 1)) > kBig;
    }
    if (kind == "equal") {
        return static_cast<bool>(CFEqual(Object(step, 1), Object(step, 2)));
    }
    if (kind == "samehash") {
        return CFHash(Object(step, 1)) == CFHash(Object(step, 2));
    }
    return Object(step, 1) == Object(step, 2);
}

json CollectionScript::RetainOrRelease(const Step& step) {
    const auto name = step.at(1).get<std::string>();
    if (step.at(0) == "retain") {
        ++references_[name];
        return NameOf(CFRetain(Object(step, 1)));
    }
    --references_[name];
    CFRelease(Object(step, 1));
    return nullptr;
}

json CollectionScript::AskText(const Step& step) {
    return CFStringGetLength(Object<CFStringRef>(step, 1));
}
