// Names by which the driver and other programs know each other: string literals, for CFSTR.
#pragma once

// The driver's own message port, and the companion's.
#define kDriverPortName "KRT9Background"
#define kCompanionPortName "VEK_KRT9"

// Under which the driver's signposts are found: its bundle's identifier, and a category.
#define kDriverBundleID "com.solvanto.KRT9Background"
#define kSignpostCategory "driver"

// The controller on the MIDI bus: its device, and the entity of that to which the driver connects.
#define kControllerDevice "KRT-9 USB"
#define kControllerEntity "Private"

// The editing application. Compared exactly: an identifier that begins with it is not the editor's.
#define kEditorBundleID "com.apple.FinalCut"

// Below the user's home folder: a property list of translated window titles for each language.
#define kTranslationsFolder "Library/Application Support/Solvanto"
