#include "tests/unit/CoreFoundation/ReferenceVectors.h"

#include <algorithm>
#include <fstream>

#include "scenes/notation/Hex.h"
#include "tests/support/Paths.h"
#include "tests/unit/CoreFoundation/Unsettled.h"

using nlohmann::json;

const json& VectorFile(const std::string& group) {
    static std::map<std::string, json> files;
    json& file = files[group];
    if (file.is_null()) {
        file = json::parse(std::ifstream(KRT9_TEST_DATA "/corefoundation/" + group + ".json"));
    }
    return file;
}

std::vector<json> Vectors(const std::string& group,
                          const std::function<bool(const json&)>& isWanted) {
    std::vector<json> wanted;
    std::ranges::copy_if(VectorFile(group)["cases"], std::back_inserter(wanted), isWanted);
    return wanted;
}

std::string VectorBytes(const json& content) {
    if (content.contains("text")) {
        return content["text"];
    }
    const auto bytes = scene_notation::ParseHex(content["hex"].get<std::string>()).value();
    return {bytes.begin(), bytes.end()};
}

void ExpectVector(const json& vector, const json& actual, const json& expected,
                  const KnownDifferences& known) {
    const auto difference = known.find(vector["id"]);
    if (const auto reason = WhyUnsettledHere(vector["family"], difference != known.end())) {
        ReportUnsettled(vector["id"], actual == expected ? "" : "got " + actual.dump(), *reason);
    } else if (difference == known.end()) {
        EXPECT_EQ(actual, expected) << vector["input"].dump().substr(0, 2000);
    } else {
        EXPECT_EQ(actual, difference->second.actual) << difference->second.reason;
    }
}

std::string VectorName(const ::testing::TestParamInfo<json>& info) {
    std::string name = info.param["id"];
    std::ranges::replace(name, '-', '_');
    return name;
}
