#include "tools/RequestBody.h"

#include "protocol/IntegerRecords.h"

namespace krt9ctl {

Bytes OneNumberBody(std::int64_t value) {
    return BodyOf(SOneIntSpec(Pattern(value)));
}

Bytes TwoNumbersBody(std::int64_t identifier, std::int64_t value) {
    STwoIntSpec record;
    record.identifier = Pattern(identifier);
    record.value = Pattern(value);
    return BodyOf(std::move(record));
}

Bytes ThreeFlagsBody(bool a, bool b, bool c) {
    SThreeIntSpec record;
    record.a = a ? 1 : 0;
    record.b = b ? 1 : 0;
    record.c = c ? 1 : 0;
    return BodyOf(std::move(record));
}

}  // namespace krt9ctl
