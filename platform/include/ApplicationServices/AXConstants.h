// Names of the attributes, roles, subroles and actions that the driver uses.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#define kAXChildrenAttribute CFSTR("AXChildren")
#define kAXDescriptionAttribute CFSTR("AXDescription")
#define kAXIdentifierAttribute CFSTR("AXIdentifier")
#define kAXIndexAttribute CFSTR("AXIndex")
#define kAXMainAttribute CFSTR("AXMain")
#define kAXParentAttribute CFSTR("AXParent")
#define kAXPositionAttribute CFSTR("AXPosition")
#define kAXRoleAttribute CFSTR("AXRole")
#define kAXSelectedRowsAttribute CFSTR("AXSelectedRows")
#define kAXSizeAttribute CFSTR("AXSize")
#define kAXSubroleAttribute CFSTR("AXSubrole")
#define kAXTitleAttribute CFSTR("AXTitle")
#define kAXValueAttribute CFSTR("AXValue")
#define kAXValueDescriptionAttribute CFSTR("AXValueDescription")
#define kAXWindowsAttribute CFSTR("AXWindows")

#define kAXButtonRole CFSTR("AXButton")
#define kAXCheckBoxRole CFSTR("AXCheckBox")
#define kAXGroupRole CFSTR("AXGroup")
#define kAXLayoutAreaRole CFSTR("AXLayoutArea")
#define kAXRadioGroupRole CFSTR("AXRadioGroup")
#define kAXScrollAreaRole CFSTR("AXScrollArea")
#define kAXSplitGroupRole CFSTR("AXSplitGroup")
#define kAXStaticTextRole CFSTR("AXStaticText")
#define kAXTableRole CFSTR("AXTable")
#define kAXTextFieldRole CFSTR("AXTextField")
#define kAXValueIndicatorRole CFSTR("AXValueIndicator")

#define kAXSearchFieldSubrole CFSTR("AXSearchField")

#define kAXConfirmAction CFSTR("AXConfirm")
#define kAXPressAction CFSTR("AXPress")
