// What callers rely on at compile time: the types, constants and signatures of the real system.
#include <os/log.h>
#include <os/signpost.h>

#include <cstdint>
#include <type_traits>

#define HAS_SIGNATURE(function, ...) static_assert(std::is_same_v<decltype(function), __VA_ARGS__>)

HAS_SIGNATURE(os_log_create, os_log_t(const char*, const char*));
HAS_SIGNATURE(os_signpost_enabled, bool(os_log_t));

#undef HAS_SIGNATURE

static_assert(std::is_pointer_v<os_log_t>);
static_assert(std::is_same_v<os_signpost_id_t, std::uint64_t>);
static_assert(OS_SIGNPOST_ID_NULL == 0);
static_assert(OS_SIGNPOST_ID_INVALID == ~std::uint64_t{0});
static_assert(OS_SIGNPOST_ID_EXCLUSIVE == 0xEEEEB0B5B2B2EEEE);
static_assert(OS_SIGNPOST_EVENT == 0 && OS_SIGNPOST_INTERVAL_BEGIN == 1 &&
              OS_SIGNPOST_INTERVAL_END == 2);
