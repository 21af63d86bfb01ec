// Every request of the companion but one, each with its body and the reply it must get. The one is
// 'JSRV', which keeps what it finds on purpose, so that it has no place where memory is measured.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "tests/reliability/WireClient.h"

namespace test_support {

// The scene in which the replies hold, whatever the order of the requests.
extern const char* const kMixScene;

struct MixedRequest {
    std::string_view code;
    Bytes body;
    Bytes reply;  // empty: no data
};

const std::vector<MixedRequest>& RequestMix();

}  // namespace test_support
