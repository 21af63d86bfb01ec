// Failures of the frameworks that a test asks for: functions of this program take
// the place of theirs and pass all other calls on.
#pragma once

struct Failures {
    bool localizedString = false;  // CFBundleCopyLocalizedString
    bool representation = false;   // CFStringGetFileSystemRepresentation, which writes "~" before
    bool url = false;              // CFURLCreateWithFileSystemPath
    bool readStream = false;       // CFReadStreamCreateWithFile

    static Failures& Current();
};
