// The files of translated window titles: one for each language, of which the driver reads that of
// its own language with each request for a target window.
#include <CoreFoundation/CoreFoundation.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <glob.h>

#include <filesystem>
#include <optional>

#include "VEKCommon/Names.h"
#include "VEKCommon/OwnedReference.h"
#include "tools/Text.h"
#include "tools/doctor/Examination.h"

namespace krt9ctl::doctor {

namespace {

constexpr std::string_view kTranslations = "translations";
constexpr char kPattern[] = "~/" kTranslationsFolder "/*.plist";

// The driver expands the tilde by the same rules.
std::vector<std::string> Files() {
    glob_t matches{};
    std::vector<std::string> files;
    if (glob(kPattern, GLOB_TILDE, nullptr, &matches) == 0) {
        files.assign(matches.gl_pathv, matches.gl_pathv + matches.gl_pathc);
    }
    globfree(&matches);
    return files;
}

// The number of titles; nothing for a file that is not a dictionary.
std::optional<CFIndex> TitlesIn(const std::string& path) {
    const auto text = StringOf(path);
    const OwnedReference<CFURLRef> url(
        text ? CFURLCreateWithFileSystemPath(kCFAllocatorDefault, text.get(), kCFURLPOSIXPathStyle,
                                             false)
             : nullptr);
    const OwnedReference<CFReadStreamRef> stream(
        url ? CFReadStreamCreateWithFile(kCFAllocatorDefault, url.get()) : nullptr);
    if (!stream || !CFReadStreamOpen(stream.get())) {
        return std::nullopt;
    }
    const OwnedReference<CFPropertyListRef> list(CFPropertyListCreateWithStream(
        kCFAllocatorDefault, stream.get(), 0, kCFPropertyListImmutable, nullptr, nullptr));
    CFReadStreamClose(stream.get());
    return list && CFGetTypeID(list.get()) == CFDictionaryGetTypeID()
               ? std::optional(CFDictionaryGetCount(static_cast<CFDictionaryRef>(list.get())))
               : std::nullopt;
}

}  // namespace

Finding CheckTranslations() {
    std::vector<std::string> listed;
    Json languages = Json::object();
    for (const std::string& path : Files()) {
        const auto titles = TitlesIn(path);
        if (!titles) {
            return Failing(kTranslations, ExitCode::translations,
                           Printable(path) + " is not a property list of titles",
                           fmt::format("head -c 300 '{}'", Printable(path)), {{"path", path}});
        }
        const std::string language = std::filesystem::path(path).stem();
        languages[language] = *titles;
        listed.push_back(fmt::format("{} ({})", Printable(language), *titles));
    }
    if (listed.empty()) {
        return Failing(kTranslations, ExitCode::translations,
                       "there is no file " + std::string(kPattern) +
                           ": windows are found by the titles that requests name, untranslated",
                       "ls ~/'" kTranslationsFolder "'");
    }
    return Fine(kTranslations,
                fmt::format("languages and their numbers of titles: {}", fmt::join(listed, ", ")),
                {{"titles", languages}});
}

}  // namespace krt9ctl::doctor
