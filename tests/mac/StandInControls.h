// The controls of an editor's window, each with the identifier by which the driver looks for it.
#pragma once

#import <AppKit/AppKit.h>

// A control that says on standard output what is done to it: "pressed _NS:160".
@interface KRTStandInControls : NSObject {
    NSMutableArray* _radioButtons;
}

// A split view that holds:
//   _NS:159  check box, on              _NS:160  button
//   _NS:119  radio group of three, the first selected
//   _NS:87   text field "100"           _NS:100  static text "Harbour Wide"
//   _NS:139  table of three rows        _NS:393  layout area with a playhead at 01:00:00:00
// To be released by the caller, who keeps this object as long as the view.
- (NSView*)newContentView;

@end
