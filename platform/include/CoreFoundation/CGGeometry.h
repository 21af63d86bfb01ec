// Points, sizes and rectangles of Core Graphics. The struct tags are those of Foundation's NSPoint,
// NSSize and NSRect, which on macOS are the very same types, so a C++ function that takes a
// CGPoint& links alike from C++ and from Objective-C++.
#pragma once

#ifdef __OBJC__
#import <Foundation/NSGeometry.h>

using CGPoint = NSPoint;
using CGSize = NSSize;
using CGRect = NSRect;
#else
using CGFloat = double;

struct _NSPoint {
    CGFloat x;
    CGFloat y;
};
using CGPoint = _NSPoint;

struct _NSSize {
    CGFloat width;
    CGFloat height;
};
using CGSize = _NSSize;

struct _NSRect {
    CGPoint origin;
    CGSize size;
};
using CGRect = _NSRect;
#endif

inline CGPoint CGPointMake(CGFloat x, CGFloat y) {
    return CGPoint{x, y};
}
inline CGSize CGSizeMake(CGFloat width, CGFloat height) {
    return CGSize{width, height};
}
