#import "platform/CoreFoundation/Bundle/Bundle.h"

#include <CoreFoundation/CFPropertyList.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/CoreFoundation/Bundle/BundleFile.h"
#include "platform/CoreFoundation/Bundle/BundleLayout.h"
#include "platform/CoreFoundation/Bundle/Languages.h"
#include "platform/Variants/Variants.h"

namespace {

NSString* PathString(const std::filesystem::path& path) {
    return [[NSFileManager defaultManager] stringWithFileSystemRepresentation:path.c_str()
                                                                       length:path.native().size()];
}

// The dictionary in a property list file; nil when it holds none.
NSDictionary* ReadDictionary(const std::filesystem::path& path) {
    const auto bytes = bundle::ReadFile(path);
    if (!bytes) {
        return nil;
    }
    NSData* data = [NSData dataWithBytesNoCopy:const_cast<std::uint8_t*>(bytes->data())
                                        length:bytes->size()
                                  freeWhenDone:NO];
    const id root =
        [(id)CFPropertyListCreateWithData(kCFAllocatorDefault, (CFDataRef)data,
                                          kCFPropertyListImmutable, nullptr, nullptr) autorelease];
    return [root isKindOfClass:[NSDictionary class]] ? root : nil;
}

NSString* StringForKey(NSDictionary* dictionary, NSString* key) {
    const id value = [dictionary objectForKey:key];
    return [value isKindOfClass:[NSString class]] ? value : nil;
}

// Bundles by their paths: one for each, kept with what was read for the life of the process.
NSMutableDictionary* Remembered() {
    static NSMutableDictionary* const bundles = [[NSMutableDictionary alloc] init];
    return bundles;
}

}  // namespace

@implementation MacBundle

+ (MacBundle*)mainMacBundle {
    static MacBundle* main = [[self alloc] initWithFolder:bundle::MainBundleFolder()];
    return main;
}

+ (MacBundle*)macBundleWithPath:(NSString*)path {
    BOOL isFolder = NO;
    if (path == nil ||
        ![[NSFileManager defaultManager] fileExistsAtPath:path isDirectory:&isFolder] ||
        !isFolder) {
        return nil;
    }
    NSString* standardized = [path stringByStandardizingPath];
    MacBundle* remembered = [Remembered() objectForKey:standardized];
    const bool isFresh = platform_testing::IsOn(platform_testing::Variant::freshBundleInfo);
    if (remembered != nil && !isFresh) {
        return remembered;
    }
    MacBundle* made =
        [[[self alloc] initWithFolder:[standardized fileSystemRepresentation]] autorelease];
    if (!isFresh) {
        [Remembered() setObject:made forKey:standardized];
    }
    return made;
}

- (instancetype)initWithFolder:(std::filesystem::path)folder {
    // Not NSBundle's designated initialiser: that one registers the path for the whole process and
    // keeps returning what it found there the first time.
    self = [super init];
    _layout = new bundle::Layout(std::move(folder));
    return self;
}

- (void)dealloc {
    delete _layout;
    [_infoDictionary release];
    [_localizedInfo release];
    [super dealloc];
}

- (NSString*)bundlePath {
    return PathString(_layout->Folder());
}

- (NSURL*)bundleURL {
    return [NSURL fileURLWithPath:[self bundlePath] isDirectory:YES];
}

- (NSString*)resourcePath {
    return PathString(_layout->ResourceFolder());
}

- (void)readInfo {
    if (_infoIsRead) {
        return;
    }
    _infoIsRead = YES;
    _infoDictionary = [ReadDictionary(_layout->InfoPath()) retain];
    _localizedInfo = [[self table:@"InfoPlist" ofType:@"strings"] retain];
}

- (NSDictionary*)infoDictionary {
    [self readInfo];
    return _infoDictionary;
}

- (NSString*)bundleIdentifier {
    return StringForKey([self infoDictionary], @"CFBundleIdentifier");
}

- (NSString*)developmentLocalization {
    return StringForKey([self infoDictionary], @"CFBundleDevelopmentRegion");
}

- (id)objectForInfoDictionaryKey:(NSString*)key {
    NSString* localized = StringForKey([self localizedInfoDictionary], key);
    return localized != nil ? localized : [_infoDictionary objectForKey:key];
}

- (NSDictionary*)localizedInfoDictionary {
    [self readInfo];
    return _localizedInfo;
}

- (NSString*)localizedStringForKey:(NSString*)key value:(NSString*)value table:(NSString*)table {
    NSString* localized = [self stringForKey:key
                                     inTable:[table length] != 0 ? table : @"Localizable"];
    if (localized != nil) {
        return localized;
    }
    if ([value length] != 0) {
        return value;
    }
    return key != nil ? key : @"";
}

// Plural rules (".stringsdict") come before plain strings; a plain string among them counts too.
- (NSString*)stringForKey:(NSString*)key inTable:(NSString*)table {
    if (key == nil) {
        return nil;
    }
    NSString* string = StringForKey([self table:table ofType:@"stringsdict"], key);
    return string != nil ? string : StringForKey([self table:table ofType:@"strings"], key);
}

- (NSDictionary*)table:(NSString*)table ofType:(NSString*)type {
    NSString* region = [self developmentLocalization];
    const std::vector<std::string> localizations =
        bundle::OrderLocalizations(_layout->Localizations(), bundle::PreferredLanguages(),
                                   region != nil ? [region UTF8String] : "");
    const std::optional<std::filesystem::path> file = _layout->Find(
        [[table stringByAppendingPathExtension:type] fileSystemRepresentation], localizations);
    return file ? ReadDictionary(*file) : nil;
}

@end
