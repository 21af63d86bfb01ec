// A bundle shaped as on macOS: Contents/Info.plist, Contents/Resources, Contents/MacOS, or flat.
// Foundation's own bundles support another layout only.
#pragma once

#import <Foundation/Foundation.h>

namespace bundle {
class Layout;
}

@interface MacBundle : NSBundle {
    bundle::Layout* _layout;  // owned
    NSDictionary* _infoDictionary;
    NSDictionary* _localizedInfo;
    BOOL _infoIsRead;
}

// The bundle or folder that holds the running program; the same object for the whole process.
+ (MacBundle*)mainMacBundle;

// nil unless the path names a folder. Every call reads the disk again.
+ (MacBundle*)macBundleWithPath:(NSString*)path;

// A value from Info.plist or, when the table "InfoPlist" has one, its translation. Lives as long as
// the bundle.
- (id)objectForInfoDictionaryKey:(NSString*)key;

@end
