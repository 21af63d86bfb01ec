#import <AppKit/AppKit.h>

#include "tests/unit/ApplicationServices/ApiContract.h"

static_assert(std::is_same_v<NSPoint, CGPoint>);
static_assert(std::is_same_v<NSSize, CGSize>);
static_assert(std::is_same_v<NSRect, CGRect>);
