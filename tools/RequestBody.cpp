#include "tools/RequestBody.h"

#include <algorithm>

#include "protocol/InputRecords.h"
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

Bytes MovedMouseBody(const Bytes& body, std::int64_t x, std::int64_t y) {
    SSendMouseSpec record;
    record.Deserialize(body.data());
    record.x = Pattern(std::max<std::int64_t>(x, 0));
    record.y = Pattern(std::max<std::int64_t>(y, 0));
    return BodyOf(std::move(record));
}

std::pair<std::int64_t, std::int64_t> PointOfMouseBody(const Bytes& body) {
    SSendMouseSpec record;
    record.Deserialize(body.data());
    return {record.x, record.y};
}

}  // namespace krt9ctl
