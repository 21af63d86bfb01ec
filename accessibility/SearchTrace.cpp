#include "accessibility/SearchTrace.h"

#include <syslog.h>

#include "VEKCommon/ConsoleLog.h"
#include "accessibility/ElementQuery.h"
#include "accessibility/calls/ElementAttributes.h"

void TraceFromWindows::LevelBegins() {
    ConsoleLog(CFSTR("CopyChild (%@, %@) level = %d"), identifier_, role_, level_);
    ++level_;
}

void TraceFromWindows::LevelEnds(bool /*found*/) {
    --level_;
}

void TraceFromWindows::ChildBegins(CFIndex index) {
    ConsoleLog(CFSTR("  got Child %lu"), index);
}

void TraceFromWindows::RoleChecked(CFStringRef role, bool taken, CFArrayRef /*values*/) {
    ConsoleLog(taken ? CFSTR("        role %@ is valid") : CFSTR("        role %@ is not valid"),
               role);
}

void TraceFromWindows::IdentifierChecked(CFStringRef identifier, bool same, CFIndex index) {
    if (identifier == nullptr) {
        ConsoleLog(CFSTR("            child has no ID"));
        return;
    }
    ConsoleLog(CFSTR("          checking id %@"), identifier);
    if (same) {
        ConsoleLog(CFSTR("  returning element with id = %@ at index %ld"), identifier, index);
    }
}

void TraceFromWindows::Found(AXUIElementRef element, CFIndex index) {
    ConsoleLog(CFSTR("  returning element with id = %@ at index %ld retain count = %ld"),
               identifier_, index, CFGetRetainCount(element));
}

void TraceFromWindows::DescentBegins(CFStringRef /*role*/) {
    ConsoleLog(CFSTR("            wrong element- checking children"));
}

void TraceFromWindows::ChildrenRead(CFIndex count) {
    ConsoleLog(CFSTR("             there are %ld children"), count);
}

void TraceFromWindows::FoundBelow() {
    ConsoleLog(CFSTR("   recursion found element with id %@"), identifier_);
}

void TraceInArray::LevelBegins() {
    ConsoleLog(CFSTR("CopyChildWithID %@"), identifier_);
}

void TraceInArray::LevelEnds(bool found) {
    if (!found) {
        ConsoleLog(CFSTR(" didn't find element with ID %@"), identifier_);
    }
}

void TraceInArray::RoleChecked(CFStringRef role, bool taken, CFArrayRef values) {
    if (taken) {
        ConsoleLog(CFSTR(" child with ID %@ role = %@"),
                   ValueAt(values, ElementQuery::kIdentifierIndex), role);
    }
}

void TraceInArray::IdentifierChecked(CFStringRef identifier, bool same, CFIndex index) {
    if (identifier == nullptr) {
        return;
    }
    ConsoleLog(CFSTR("  id = %@"), identifier);
    if (same) {
        ConsoleLog(CFSTR("  returning element with id = %@ at index %ld"), identifier, index);
    }
}

void TraceInArray::DescentBegins(CFStringRef role) {
    ConsoleLog(CFSTR("  found elem with role %@"), role);
}

// This one line goes to the system log, at the emergency level.
void TraceInArray::ChildrenRead(CFIndex /*count*/) {
    syslog(LOG_EMERG, "  got children");
}

void TraceInArray::FoundBelow() {
    ConsoleLog(CFSTR("   recursion found element with id %@"), identifier_);
}
