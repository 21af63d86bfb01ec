#include "platform/Variants/Variants.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

namespace platform_testing {
namespace {

constexpr std::array kNames = {
    std::pair{"interrupt-in-call", Variant::interruptInCall},
    std::pair{"interrupt-in-tick", Variant::interruptInTick},
    std::pair{"interrupt-after-port", Variant::interruptAfterPort},
    std::pair{"main-screen-elsewhere", Variant::mainScreenElsewhere},
    std::pair{"no-main-screen", Variant::noMainScreen},
    std::pair{"fresh-bundle-info", Variant::freshBundleInfo},
    std::pair{"long-port-queue", Variant::longPortQueue},
    std::pair{"missing-is-null", Variant::missingIsNull},
    std::pair{"hang-at-once", Variant::hangAtOnce},
    std::pair{"hang-for-a-second", Variant::hangForASecond},
    std::pair{"private-modifiers", Variant::privateModifiers},
    std::pair{"offline-devices", Variant::offlineDevices},
    std::pair{"late-activation", Variant::lateActivation},
};

std::array<std::atomic<bool>, kNames.size()> on;
std::array<std::atomic<bool>, kNames.size()> interrupted;

std::size_t Index(Variant variant) {
    return static_cast<std::size_t>(variant);
}

// Before anything of the layer runs.
[[gnu::constructor]] void ReadEnvironment() {
    const char* const value = std::getenv("KRT9_PLATFORM_VARIANT");
    std::string_view rest = value != nullptr ? value : "";
    while (!rest.empty()) {
        const std::string_view name = rest.substr(0, rest.find(','));
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
        const auto variant = VariantNamed(name);
        if (!variant) {
            std::fprintf(stderr, "KRT9_PLATFORM_VARIANT: no variant is named \"%s\"\n",
                         std::string(name).c_str());
            _exit(2);
        }
        on[Index(*variant)] = true;
    }
}

}  // namespace

bool IsOn(Variant variant) {
    return on[Index(variant)];
}

std::optional<Variant> VariantNamed(std::string_view name) {
    for (const auto& [known, variant] : kNames) {
        if (name == known) {
            return variant;
        }
    }
    return std::nullopt;
}

UnderVariant::UnderVariant(Variant variant)
    : variant_(variant), before_(on[Index(variant)].exchange(true)) {}

UnderVariant::~UnderVariant() {
    on[Index(variant_)] = before_;
}

WithoutVariants::WithoutVariants(const std::vector<Variant>& variants) {
    for (const Variant variant : variants) {
        if (on[Index(variant)].exchange(false)) {
            switchedOff_.push_back(variant);
        }
    }
}

WithoutVariants::~WithoutVariants() {
    for (const Variant variant : switchedOff_) {
        on[Index(variant)] = true;
    }
}

void InterruptOnce(Variant variant) {
    if (IsOn(variant) && !interrupted[Index(variant)].exchange(true)) {
        raise(SIGINT);
    }
}

}  // namespace platform_testing
