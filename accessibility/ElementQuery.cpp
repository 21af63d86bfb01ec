#include "accessibility/ElementQuery.h"

#include <ApplicationServices/ApplicationServices.h>

#include <algorithm>
#include <iterator>

#include "accessibility/calls/ElementAttributes.h"

namespace {

const CFStringRef kRolesFromWindows[] = {kAXButtonRole, kAXCheckBoxRole, kAXTableRole,
                                         kAXTextFieldRole, kAXRadioGroupRole};
const CFStringRef kRolesInArray[] = {kAXButtonRole, kAXCheckBoxRole, kAXTableRole,
                                     kAXRadioGroupRole};

ElementQuery Query(CFStringRef identifier, CFStringRef role, CFArrayRef attributes,
                   std::span<const CFStringRef> rolesMeantByAny, bool skipsSearchFields) {
    ElementQuery query{.identifier = identifier,
                       .role = role,
                       .attributes = attributes,
                       .rolesMeantByAny = {},
                       .skipsSearchFields = skipsSearchFields};
    if (SameText(role, kVEK_AXRole_AllValidRoles)) {
        query.rolesMeantByAny = rolesMeantByAny;
    }
    return query;
}

}  // namespace

bool ElementQuery::TakesRole(CFStringRef elementRole) const {
    return rolesMeantByAny.empty()
               ? SameText(elementRole, role)
               : std::any_of(rolesMeantByAny.begin(), rolesMeantByAny.end(),
                             [&](CFStringRef meant) { return SameText(elementRole, meant); });
}

bool ElementQuery::Skips(CFStringRef elementRole, CFStringRef elementSubrole) const {
    return skipsSearchFields && SameText(elementRole, kAXTextFieldRole) &&
           SameText(elementSubrole, kAXSearchFieldSubrole);
}

bool IsSearchedFurther(CFStringRef role) {
    return SameText(role, kAXGroupRole) || SameText(role, kAXSplitGroupRole) ||
           SameText(role, kAXScrollAreaRole);
}

CFArrayRef CreateAttributesFromWindows() {
    const void* names[] = {kAXRoleAttribute, kAXChildrenAttribute, kAXIdentifierAttribute,
                           kAXSubroleAttribute};
    return CFArrayCreate(kCFAllocatorDefault, names, std::size(names), &kCFTypeArrayCallBacks);
}

ElementQuery QueryFromWindows(CFStringRef identifier, CFStringRef role, CFArrayRef attributes) {
    return Query(identifier, role, attributes, kRolesFromWindows, true);
}

ElementQuery QueryInArray(CFStringRef identifier, CFStringRef role, CFArrayRef attributes) {
    return Query(identifier, role, attributes, kRolesInArray, false);
}
