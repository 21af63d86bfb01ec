// One candidate window of a target-window request, and a view of a list of them.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

struct VEK_Driver_TargetWindowInfo {
    char windowName[256];  // 0-terminated key of the title in the localized string table
    unsigned long long windowNameLength;  // UTF-16 units in the next field
    UniChar windowNameUnicode[1024];      // carried, not used by the lookup
    char subWindowName[256];  // 0-terminated key of the title of the window whose frame is reported
    unsigned long long subWindowNameLength;
    UniChar subWindowNameUnicode[1024];
    double firstValue;  // this and the next three are carried, not used by the lookup
    double secondValue;
    UInt8 kind;
    bool firstFlag;
    bool hasSubWindow;
};

// Non-owning.
class VEK_Driver_TargetWindowInfoArray {
  public:
    VEK_Driver_TargetWindowInfoArray(VEK_Driver_TargetWindowInfo* targets, unsigned int count)
        : targets_(targets), count_(count) {}
    virtual ~VEK_Driver_TargetWindowInfoArray();

    // Null when there is no such index.
    VEK_Driver_TargetWindowInfo* TargetAt(unsigned int index) const;

  private:
    VEK_Driver_TargetWindowInfo* targets_;
    unsigned int count_;
};
