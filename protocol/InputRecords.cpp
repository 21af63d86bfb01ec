#include "protocol/InputRecords.h"

#include "protocol/Truncation.h"

unsigned char* SSendKeystrokeSpec::Serialize() {
    return SerializeFields(keyCode, modifiers, flag);
}

void SSendKeystrokeSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, keyCode, modifiers, flag);
}

SSendMouseSpec::SSendMouseSpec(CGPoint point, unsigned int buttonWord, unsigned int flagValue)
    : x(TruncatedToBitPattern(point.x + 0.5)),
      y(TruncatedToBitPattern(point.y + 0.5)),
      button(buttonWord),
      flag(flagValue != 0 ? 1 : 0) {}

unsigned char* SSendMouseSpec::Serialize() {
    return SerializeFields(x, y, button, flag);
}

void SSendMouseSpec::Deserialize(const unsigned char* src) {
    DeserializeFields(src, x, y, button, flag);
    flag = flag != 0 ? 1 : 0;
}
