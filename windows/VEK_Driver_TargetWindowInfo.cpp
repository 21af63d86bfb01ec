#include "windows/VEK_Driver_TargetWindowInfo.h"

// The view does not own the records.
VEK_Driver_TargetWindowInfoArray::~VEK_Driver_TargetWindowInfoArray() = default;

VEK_Driver_TargetWindowInfo* VEK_Driver_TargetWindowInfoArray::TargetAt(unsigned int index) const {
    return index < count_ ? targets_ + index : nullptr;
}
