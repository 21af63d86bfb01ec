#import "tests/mac/StandInControls.h"

#include <cstdio>

namespace {

constexpr CGFloat kWidth = 300;
constexpr CGFloat kHeight = 24;

void Say(const char* what, id control) {
    std::printf("%s %s\n", what, [[control accessibilityIdentifier] UTF8String]);
    std::fflush(stdout);
}

NSRect Row(int row) {
    return NSMakeRect(10, 10 + row * (kHeight + 10), kWidth, kHeight);
}

// A view in place of controls that AppKit does not have.
NSView* NewPlainView(NSRect frame, NSString* role, NSString* identifier) {
    NSView* view = [[NSView alloc] initWithFrame:frame];
    [view setAccessibilityElement:YES];
    [view setAccessibilityRole:role];
    [view setAccessibilityIdentifier:identifier];
    return view;
}

void Add(NSView* parent, NSView* child) {
    [parent addSubview:child];
    [child release];
}

NSView* NewLayoutArea(NSRect frame) {
    NSView* area = NewPlainView(frame, NSAccessibilityLayoutAreaRole, @"_NS:393");
    NSView* playhead = NewPlainView(NSMakeRect(20, 0, 2, kHeight),
                                    NSAccessibilityValueIndicatorRole, @"_NS:playhead");
    [playhead setAccessibilityLabel:@"Playhead"];
    [playhead setAccessibilityValueDescription:@"01:00:00:00"];
    Add(area, playhead);
    return area;
}

}  // namespace

@implementation KRTStandInControls

- (id)init {
    self = [super init];
    if (self != nil) {
        _radioButtons = [[NSMutableArray alloc] init];
    }
    return self;
}

- (void)dealloc {
    [_radioButtons release];
    [super dealloc];
}

- (NSButton*)newButtonOfType:(NSButtonType)type
                       title:(NSString*)title
                       frame:(NSRect)frame
                  identifier:(NSString*)identifier
                      action:(SEL)action {
    NSButton* button = [[NSButton alloc] initWithFrame:frame];
    [button setButtonType:type];
    [button setTitle:title];
    [button setTarget:self];
    [button setAction:action];
    [button setAccessibilityIdentifier:identifier];
    return button;
}

- (NSTextField*)newTextField:(NSString*)text
                       frame:(NSRect)frame
                  identifier:(NSString*)identifier
                    editable:(BOOL)editable {
    NSTextField* field = [[NSTextField alloc] initWithFrame:frame];
    [field setStringValue:text];
    [field setEditable:editable];
    [field setTarget:self];
    [field setAction:@selector(confirmed:)];
    [field setAccessibilityIdentifier:identifier];
    return field;
}

- (NSView*)newRadioGroup:(NSRect)frame {
    NSView* group = NewPlainView(frame, NSAccessibilityRadioGroupRole, @"_NS:119");
    for (int index = 0; index < 3; ++index) {
        NSString* identifier = [NSString stringWithFormat:@"_NS:%d", 115 + index];
        NSButton* button = [self newButtonOfType:NSButtonTypeRadio
                                           title:identifier
                                           frame:NSMakeRect(100 * index, 0, 90, kHeight)
                                      identifier:identifier
                                          action:@selector(pressed:)];
        [button setState:index == 0 ? NSControlStateValueOn : NSControlStateValueOff];
        [_radioButtons addObject:button];
        Add(group, button);
    }
    return group;
}

- (NSView*)newTable:(NSRect)frame {
    NSScrollView* scroller = [[NSScrollView alloc] initWithFrame:frame];
    NSTableView* table = [[NSTableView alloc] initWithFrame:frame];
    NSTableColumn* column = [[NSTableColumn alloc] initWithIdentifier:@"clip"];
    [column setWidth:kWidth];
    [table addTableColumn:column];
    [table setDataSource:(id)self];
    [table setAccessibilityIdentifier:@"_NS:139"];
    [scroller setDocumentView:table];
    [column release];
    [table release];
    return scroller;
}

- (NSView*)newContentView {
    const NSRect frame = NSMakeRect(0, 0, 700, 400);
    NSSplitView* split = [[NSSplitView alloc] initWithFrame:frame];
    NSView* left = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 350, 400)];
    NSView* right = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 350, 400)];
    NSButton* box = [self newButtonOfType:NSButtonTypeSwitch
                                    title:@"Index"
                                    frame:Row(0)
                               identifier:@"_NS:159"
                                   action:@selector(pressed:)];
    [box setState:NSControlStateValueOn];
    Add(left, box);
    Add(left, [self newButtonOfType:NSButtonTypeMomentaryPushIn
                              title:@"Button"
                              frame:Row(1)
                         identifier:@"_NS:160"
                             action:@selector(pressed:)]);
    Add(left, [self newRadioGroup:Row(2)]);
    Add(left, [self newTextField:@"100" frame:Row(3) identifier:@"_NS:87" editable:YES]);
    Add(left, [self newTextField:@"Harbour Wide" frame:Row(4) identifier:@"_NS:100" editable:NO]);
    Add(right, NewLayoutArea(Row(0)));
    Add(right, [self newTable:NSMakeRect(10, 60, kWidth, 200)]);
    [split setVertical:YES];
    Add(split, left);
    Add(split, right);
    return split;
}

- (void)pressed:(NSButton*)sender {
    if ([_radioButtons containsObject:sender]) {
        for (NSButton* button in _radioButtons) {
            [button setState:button == sender ? NSControlStateValueOn : NSControlStateValueOff];
        }
    }
    Say("pressed", sender);
}

- (void)confirmed:(NSTextField*)sender {
    Say([[@"confirmed " stringByAppendingString:[sender stringValue]] UTF8String], sender);
}

- (NSInteger)numberOfRowsInTableView:(NSTableView*)table {
    (void)table;
    return 3;
}

- (id)tableView:(NSTableView*)table
    objectValueForTableColumn:(NSTableColumn*)column
                          row:(NSInteger)row {
    (void)table;
    (void)column;
    return [NSString stringWithFormat:@"Clip %ld", static_cast<long>(row)];
}

@end
