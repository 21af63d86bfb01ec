// What a search looks for. Searches differ in nothing else.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <span>

// Any role of the fixed set of controls that requests can name.
#define kVEK_AXRole_AllValidRoles CFSTR("VEKAXAllRoles")

struct ElementQuery {
    // Indexes of these attributes in `attributes`. The walk itself needs the first two.
    static constexpr CFIndex kRoleIndex = 0;
    static constexpr CFIndex kChildrenIndex = 1;
    static constexpr CFIndex kIdentifierIndex = 2;
    static constexpr CFIndex kSubroleIndex = 3;  // only if search fields are skipped

    // All borrowed: they must outlive the search.
    CFStringRef identifier;
    CFStringRef role;
    CFArrayRef attributes;  // names of what is read of every child, in one exchange

    // Empty unless `role` is kVEK_AXRole_AllValidRoles.
    std::span<const CFStringRef> rolesMeantByAny;

    // Search fields have the role of text fields; with this they never match.
    bool skipsSearchFields;

    // Whether an element of that role, which is not null, can be the one sought.
    bool TakesRole(CFStringRef elementRole) const;
    // Whether it cannot be all the same, because it is a search field. The subrole may be null.
    bool Skips(CFStringRef elementRole, CFStringRef elementSubrole) const;
};

// Whether a search goes on to the children of an element of that role, which may be null, when it
// is not the one sought.
bool IsSearchedFurther(CFStringRef role);

// The four attributes that the search from the windows reads. The caller releases the array.
CFArrayRef CreateAttributesFromWindows();

// The search from the windows of the front application; `attributes` names four attributes.
ElementQuery QueryFromWindows(CFStringRef identifier, CFStringRef role, CFArrayRef attributes);

// The search in an array of the caller's; `attributes` names three attributes. Text fields are not
// among the roles meant by "any", unlike above: the sets differ on purpose.
ElementQuery QueryInArray(CFStringRef identifier, CFStringRef role, CFArrayRef attributes);
