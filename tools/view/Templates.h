// The texts around what an application shows, as Mustache templates. Values in double braces are
// escaped by the renderer (Page.cpp).
#pragma once

namespace krt9ctl {

// Parts of the others.
extern const char* const kWindowsTemplate;
extern const char* const kStyleTemplate;

extern const char* const kPageTemplate;
extern const char* const kPictureTemplate;

// The page's only script and its style sheet, whose digests its security policy names: nothing else
// in the page is executed or applied, whatever an application's texts contain.
extern const char* const kScript;
extern const char* const kPageStyle;

}  // namespace krt9ctl
