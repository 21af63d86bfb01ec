// The tests' view of the fields of VEK_C_AXUtils.
#pragma once

#include "accessibility/VEK_C_AXUtils.h"

struct AXUtilsInspector {
    static CFMutableDictionaryRef Cache(VEK_C_AXUtils& utils) { return utils.cache_; }
    static unsigned int Level(VEK_C_AXUtils& utils) { return utils.searchLevel_; }
    static CFArrayRef Attributes() { return VEK_C_AXUtils::sMultipleAttributes; }
};
