// Records of one, two and three numbers.
#pragma once

#include "protocol/IntegerFieldsSpec.h"

struct SOneIntSpec : SIntegerFieldsSpec<1> {
    explicit SOneIntSpec(unsigned int number = 0) : value(number) {}
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int value;
};

struct STwoIntSpec : SIntegerFieldsSpec<2> {
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int identifier = 0;  // number of an element: 59 names "_NS:59"
    unsigned int value = 0;
};

struct SThreeIntSpec : SIntegerFieldsSpec<3> {
    unsigned char* Serialize() override;
    void Deserialize(const unsigned char* src) override;

    unsigned int a = 0;
    unsigned int b = 0;
    unsigned int c = 0;
};
