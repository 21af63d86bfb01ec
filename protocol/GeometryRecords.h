// Records of positions and sizes: global display coordinates, truncated toward zero.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include "protocol/IntegerFieldsSpec.h"

struct SPointSpec : SIntegerFieldsSpec<2> {
    SPointSpec() = default;
    SPointSpec(int horizontal, int vertical) : x(horizontal), y(vertical) {}
    explicit SPointSpec(const CGPoint& point);
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    int x = 0;
    int y = 0;
};

struct SPointSizeSpec : SIntegerFieldsSpec<4> {
    SPointSizeSpec() = default;
    SPointSizeSpec(const CGPoint& point, const CGSize& size);
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

struct STargetPointSizeSpec : SIntegerFieldsSpec<5> {
    STargetPointSizeSpec() = default;
    STargetPointSizeSpec(unsigned int index, const CGPoint& point, const CGSize& size);
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int targetIndex = 0;  // of the candidate whose window it is
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};
