// Which of a bundle's localizations match the user's languages.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace bundle {

// The user's languages, the preferred one first: the environment variable KRT9_LANGUAGES, names
// separated by commas; "en" when it is not set. It stands for the language list of the system
// settings, for which this layer has no other source.
std::vector<std::string> PreferredLanguages();

// The available localizations in the order in which a resource is to be looked for. For each of the
// user's languages: that name, then the name with its last parts (region, script) taken off, each
// also by its old English name ("French" for "fr"). Then likewise the development region (may be
// empty), then "Base", then English. "fr_CA" and "fr-CA" are the same name.
std::vector<std::string> OrderLocalizations(const std::vector<std::string>& available,
                                            const std::vector<std::string>& preferred,
                                            std::string_view developmentRegion);

}  // namespace bundle
