// The whole accessibility tree of one application.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "VEKCommon/OwnedReference.h"

namespace krt9ctl {

struct TreeElement {
    OwnedReference<AXUIElementRef> element;
    std::size_t parent = 0;    // index in the tree; the application's own for itself
    std::size_t topLevel = 0;  // its window; for a window, itself
    std::vector<std::size_t> children;
    std::vector<std::size_t> alsoIn;  // other elements that list it, also itself and those in it
    bool hasChildren = false;         // also without any child: the attribute is there
    // All but the children. What cannot be read is an AXValue that holds its error.
    std::map<std::string, OwnedReference<CFTypeRef>> attributes;
    std::optional<std::vector<std::string>> actions;  // when they were asked for

    std::size_t position = 0;     // among its parent's children
    bool isRow = false;           // by its role
    std::size_t rowPosition = 0;  // of a row: the same, rows only counted
    bool isSelectedRow = false;   // its parent's selected rows hold it
    // The selected rows as positions of children. Nothing when the attribute is not there or names
    // anything but children.
    std::optional<std::vector<std::size_t>> selectedRows;
};

// The element's text attribute as UTF-8; empty when it has none.
std::string TextAttribute(const TreeElement& element, const std::string& attribute);

class AccessibilityTree {
  public:
    struct Options {
        float timeout = 1;  // seconds, of each call
        bool withActions = false;
        // Called now and then with the number of elements read so far.
        std::function<void(std::size_t)> progress = [](std::size_t) {};
    };

    // Two exchanges with the application for each element, three with actions. The error is one
    // that ends the reading: the application does not answer, or this process is not trusted.
    static std::variant<AccessibilityTree, AXError> Read(pid_t pid, const Options& options);

    // The first one is the application, whose children are its windows.
    const std::vector<TreeElement>& Elements() const { return elements_; }
    // The index of an element; nothing for one that is not in the tree.
    std::optional<std::size_t> Find(CFTypeRef element) const;
    // The indexes of an array's elements. Nothing for another value, or if one is not in the tree.
    std::optional<std::vector<std::size_t>> FindAll(CFTypeRef array) const;
    // When the list of windows cannot be read.
    std::optional<AXError> WindowsError() const { return windowsError_; }
    // Elements that disappeared while the tree was read, and those beyond the limit.
    std::size_t LeftOut() const { return leftOut_; }

  private:
    struct Pending {
        std::size_t parent;
        OwnedReference<AXUIElementRef> element;
    };
    struct Hash {
        std::size_t operator()(CFTypeRef object) const { return CFHash(object); }
    };
    struct Equal {
        bool operator()(CFTypeRef left, CFTypeRef right) const { return CFEqual(left, right); }
    };

    AXError Walk(const Options& options);
    AXError ReadElement(std::size_t place, const Options& options);
    void TakeValues(std::size_t place, CFArrayRef names, CFArrayRef values);
    void AddPending(std::size_t parent, CFArrayRef children);
    std::size_t Add(Pending pending);
    void NumberChildren(TreeElement& parent);
    void MarkSelectedRows(TreeElement& table);

    std::vector<TreeElement> elements_;
    std::unordered_map<CFTypeRef, std::size_t, Hash, Equal> places_;
    std::vector<Pending> pending_;
    std::optional<AXError> windowsError_;
    std::size_t leftOut_ = 0;
};

}  // namespace krt9ctl
