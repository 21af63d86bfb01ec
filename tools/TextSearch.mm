#include "tools/TextSearch.h"

#import <Foundation/Foundation.h>

namespace krt9ctl {

namespace {

// Owned by the caller; nil for bytes that are not UTF-8.
NSString* StringOf(const std::string& utf8) {
    return [[NSString alloc] initWithBytes:utf8.data()
                                    length:utf8.size()
                                  encoding:NSUTF8StringEncoding];
}

}  // namespace

TextSearch::TextSearch(const std::string& sought) : sought_(StringOf(sought)) {}

TextSearch::~TextSearch() {
    [(NSString*)sought_ release];
}

bool TextSearch::IsIn(const std::string& text) const {
    @autoreleasepool {
        NSString* sought = (NSString*)sought_;
        NSString* whole = [StringOf(text) autorelease];
        if (sought == nil || whole == nil) {
            return false;
        }
        return [sought length] == 0 ||
               [whole rangeOfString:sought options:NSCaseInsensitiveSearch].location != NSNotFound;
    }
}

}  // namespace krt9ctl
