// The constant objects of Foundation that Core Foundation shares. GNUstep counts references to them
// like those to any other object, so that one release too many would free them for everyone.
#import <Foundation/Foundation.h>

@interface NSIntNumber : NSNumber
@end

@interface NSBoolNumber : NSIntNumber
@end

// NOLINTBEGIN(bugprone-macro-parentheses): these are whole methods.
#define KRT9_IMMORTAL                           \
    -(id)retain {                               \
        return self;                            \
    }                                           \
    -(oneway void)release{} - (id)autorelease { \
        return self;                            \
    }                                           \
    -(NSUInteger)retainCount {                  \
        return NSUIntegerMax;                   \
    }
// NOLINTEND(bugprone-macro-parentheses)

@implementation NSBoolNumber (Immortal)
KRT9_IMMORTAL
@end

@implementation NSNull (Immortal)
KRT9_IMMORTAL
@end

@implementation NSConstantString (Immortal)
KRT9_IMMORTAL
@end
