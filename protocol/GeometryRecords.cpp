#include "protocol/GeometryRecords.h"

#include "protocol/Truncation.h"

SPointSpec::SPointSpec(const CGPoint& point)
    : x(TruncatedToInt(point.x)), y(TruncatedToInt(point.y)) {}

unsigned char* SPointSpec::Serialize() {
    return SerializeFields(x, y);
}

void SPointSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, x, y);
}

SPointSizeSpec::SPointSizeSpec(const CGPoint& point, const CGSize& size)
    : x(TruncatedToInt(point.x)),
      y(TruncatedToInt(point.y)),
      width(TruncatedToInt(size.width)),
      height(TruncatedToInt(size.height)) {}

unsigned char* SPointSizeSpec::Serialize() {
    return SerializeFields(x, y, width, height);
}

void SPointSizeSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, x, y, width, height);
}

STargetPointSizeSpec::STargetPointSizeSpec(unsigned int index, const CGPoint& point,
                                           const CGSize& size)
    : targetIndex(index),
      x(TruncatedToInt(point.x)),
      y(TruncatedToInt(point.y)),
      width(TruncatedToInt(size.width)),
      height(TruncatedToInt(size.height)) {}

unsigned char* STargetPointSizeSpec::Serialize() {
    return SerializeFields(targetIndex, x, y, width, height);
}

void STargetPointSizeSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, targetIndex, x, y, width, height);
}
