#include "protocol/IntegerRecords.h"

unsigned char* SOneIntSpec::Serialize() {
    return SerializeFields(value);
}

void SOneIntSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, value);
}

unsigned char* STwoIntSpec::Serialize() {
    return SerializeFields(identifier, value);
}

void STwoIntSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, identifier, value);
}

unsigned char* SThreeIntSpec::Serialize() {
    return SerializeFields(a, b, c);
}

void SThreeIntSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, a, b, c);
}
