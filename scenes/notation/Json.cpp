#include "scenes/notation/Json.h"

namespace scene_notation {

std::string OneLine(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace scene_notation
