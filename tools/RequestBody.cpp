#include "tools/RequestBody.h"

#include <algorithm>

namespace krt9ctl {

Bytes MovedMouseBody(const Bytes& body, std::int64_t x, std::int64_t y) {
    const auto fields = krt9::IntegersOf(body);
    return krt9::IntegersBody({Pattern(std::max<std::int64_t>(x, 0)),
                               Pattern(std::max<std::int64_t>(y, 0)), fields[2], fields[3]});
}

std::pair<std::int64_t, std::int64_t> PointOfMouseBody(const Bytes& body) {
    const auto fields = krt9::IntegersOf(body);
    return {fields[0], fields[1]};
}

}  // namespace krt9ctl
