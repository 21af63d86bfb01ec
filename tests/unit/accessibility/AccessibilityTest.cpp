#include "tests/unit/accessibility/AccessibilityTest.h"

#include <utility>

namespace {

template <typename Reference>
OwnedReference<Reference> CopyScratch(EditorTree& editor, Value value) {
    editor.Set(editor.Application(), "Scratch", std::move(value));
    OwnedReference<AXUIElementRef> application(AXUIElementCreateApplication(EditorTree::kProcess));
    CFTypeRef object = nullptr;
    AXUIElementCopyAttributeValue(application.get(), CFSTR("Scratch"), &object);
    return OwnedReference<Reference>(static_cast<Reference>(object));
}

}  // namespace

OwnedReference<AXUIElementRef> AccessibilityTest::Object(ElementReference element) {
    return CopyScratch<AXUIElementRef>(editor_, Value{element});
}

OwnedReference<CFArrayRef> AccessibilityTest::Array(Value values) {
    return CopyScratch<CFArrayRef>(editor_, std::move(values));
}

ElementReference AccessibilityTest::Titled(ElementReference element, const std::string& title) {
    editor_.Set(element, "AXTitle", Text(title));
    return element;
}

std::string TitleOf(AXUIElementRef element) {
    if (element == nullptr) {
        return "(none)";
    }
    CFTypeRef title = nullptr;
    if (AXUIElementCopyAttributeValue(element, kAXTitleAttribute, &title) != kAXErrorSuccess) {
        return "(no title)";
    }
    OwnedReference<CFStringRef> owned(static_cast<CFStringRef>(title));
    return TextOf(owned.get());
}

OwnedReference<CFStringRef> String(const std::string& text) {
    return OwnedReference<CFStringRef>(
        CFStringCreateWithCString(kCFAllocatorDefault, text.c_str(), kCFStringEncodingUTF8));
}

std::string TextOf(CFStringRef text) {
    if (text == nullptr) {
        return "(null)";
    }
    std::string buffer(static_cast<std::size_t>(CFStringGetLength(text)) * 4 + 1, '\0');
    CFStringGetCString(text, buffer.data(), static_cast<CFIndex>(buffer.size()),
                       kCFStringEncodingUTF8);
    buffer.resize(buffer.find('\0'));
    return buffer;
}
