#import "frontapplication/VEK_Driver_FrontAppObserver.h"

namespace {

constexpr OSType kUnknownSignature = 0x3F3F3F3F;  // "????"

VEK_Driver_FrontAppObserver* gSelf = nil;  // retained

// The information dictionary of the bundle that the application runs from, or nil.
NSDictionary* InfoDictionary(NSRunningApplication* app) {
    NSURL* url = [app bundleURL];
    return url != nil ? [[NSBundle bundleWithURL:url] infoDictionary] : nil;
}

NSString* StringForKey(NSDictionary* dictionary, NSString* key) {
    id value = [dictionary objectForKey:key];
    return [value isKindOfClass:[NSString class]] ? value : nil;
}

}  // namespace

@implementation VEK_Driver_FrontAppObserver

@synthesize bundleID = _bundleID;
@synthesize shortVersion = _shortVersion;
@synthesize signature = _signature;
@synthesize callback = _callback;
@synthesize frontAppChanged = _frontAppChanged;
@synthesize processID = _processID;

+ (VEK_Driver_FrontAppObserver*)frontAppObserver {
    if (gSelf == nil) {
        [[[self alloc] init] release];
    }
    return gSelf;
}

// The latest instance becomes the shared one. It is retained here, so that it outlives its
// creator's release.
- (id)init {
    self = [super init];
    // Unreachable: nil. NSObject's init does not fail.
    if (self != nil) {
        [self retain];
        [gSelf release];
        gSelf = self;
    }
    return self;
}

- (void)dealloc {
    [[[NSWorkspace sharedWorkspace] notificationCenter] removeObserver:self];
    [_bundleID release];
    [_shortVersion release];
    [super dealloc];
}

- (void)observe {
    NSWorkspace* workspace = [NSWorkspace sharedWorkspace];
    [self collectFrontAppInfo:[workspace frontmostApplication]];
    self.frontAppChanged = YES;
    [[workspace notificationCenter] addObserver:self
                                       selector:@selector(newFrontApp:)
                                           name:NSWorkspaceDidActivateApplicationNotification
                                         object:nil];
}

- (void)newFrontApp:(NSNotification*)notification {
    @autoreleasepool {
        self.frontAppChanged = YES;
        [self collectFrontAppInfo:[[notification userInfo] objectForKey:NSWorkspaceApplicationKey]];
    }
}

- (void)collectFrontAppInfo:(NSRunningApplication*)app {
    if (app == nil) {
        return;
    }
    self.processID = [app processIdentifier];
    self.signature = kUnknownSignature;
    self.bundleID = [app bundleIdentifier];
    if (self.bundleID == nil) {
        return;  // shortVersion keeps the previous application's value, on purpose
    }
    NSDictionary* info = InfoDictionary(app);
    if (info == nil) {
        return;
    }
    if (NSString* signature = StringForKey(info, @"CFBundleSignature")) {
        self.signature = UTGetOSTypeFromString((CFStringRef)signature);
    }
    self.shortVersion = StringForKey(info, @"CFBundleShortVersionString");
}

@end
