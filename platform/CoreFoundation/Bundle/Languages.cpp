#include "platform/CoreFoundation/Bundle/Languages.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace bundle {

namespace {

struct OldName {
    std::string_view code;
    std::string_view name;
};

constexpr std::array<OldName, 10> kOldNames{{{"de", "German"},
                                             {"en", "English"},
                                             {"es", "Spanish"},
                                             {"fr", "French"},
                                             {"it", "Italian"},
                                             {"ja", "Japanese"},
                                             {"ko", "Korean"},
                                             {"nl", "Dutch"},
                                             {"pt", "Portuguese"},
                                             {"sv", "Swedish"}}};

std::string Normalized(std::string_view name) {
    std::string normalized(name);
    std::ranges::replace(normalized, '_', '-');
    const auto* old = std::ranges::find(kOldNames, name, &OldName::name);
    return old == kOldNames.end() ? normalized : std::string(old->code);
}

class Order {
  public:
    explicit Order(const std::vector<std::string>& available) : available_(available) {}

    void AddLanguage(std::string_view language) {
        for (std::string name = Normalized(language); !name.empty(); name.resize(
                 name.find_last_of('-') == std::string::npos ? 0 : name.find_last_of('-'))) {
            Add(name);
        }
    }

    std::vector<std::string> Take() { return std::move(ordered_); }

  private:
    void Add(const std::string& name) {
        for (const std::string& localization : available_) {
            if (Normalized(localization) == name &&
                std::ranges::find(ordered_, localization) == ordered_.end()) {
                ordered_.push_back(localization);
            }
        }
    }

    const std::vector<std::string>& available_;
    std::vector<std::string> ordered_;
};

}  // namespace

std::vector<std::string> PreferredLanguages() {
    const char* setting = std::getenv("KRT9_LANGUAGES");
    std::string_view list = setting != nullptr ? setting : "en";
    std::vector<std::string> languages;
    while (!list.empty()) {
        const std::string_view language = list.substr(0, list.find(','));
        list.remove_prefix(std::min(language.size() + 1, list.size()));
        if (!language.empty()) {
            languages.emplace_back(language);
        }
    }
    return languages;
}

std::vector<std::string> OrderLocalizations(const std::vector<std::string>& available,
                                            const std::vector<std::string>& preferred,
                                            std::string_view developmentRegion) {
    Order order(available);
    for (const std::string& language : preferred) {
        order.AddLanguage(language);
    }
    order.AddLanguage(developmentRegion);
    order.AddLanguage("Base");
    order.AddLanguage("en");
    return order.Take();
}

}  // namespace bundle
