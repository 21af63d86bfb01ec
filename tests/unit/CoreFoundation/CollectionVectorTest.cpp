// Dictionaries, arrays, data and references, against measured scripts.
#include "tests/unit/CoreFoundation/CollectionScript.h"
#include "tests/unit/CoreFoundation/Vectors.h"

namespace {

using vectors::Vector;

constexpr char kFile[] = "cfcollections.json";

std::string CheckScript(const Vector& vector) {
    CollectionScript script;
    return script.Run(vector.input.at("steps"), vector.result);
}

const vectors::Checks kChecks = {
    {"dict-pointer", CheckScript}, {"dict-type", CheckScript}, {"array", CheckScript},
    {"data", CheckScript},         {"retain", CheckScript},
};

constexpr char kNotShared[] = "small numbers were one object; whether they are differs by system";

const vectors::Deviations kDeviations = {
    {"retain-016", kNotShared},
    {"retain-018", kNotShared},
};

bool CannotRun(const Vector& vector) {
    return !CollectionScript::CanRun(vector.input.at("steps"));
}

std::vector<Vector> RunnableScripts() {
    std::vector<Vector> scripts = vectors::Covered(kFile, kChecks);
    std::erase_if(scripts, CannotRun);
    return scripts;
}

class CollectionVector : public testing::TestWithParam<Vector> {};

TEST_P(CollectionVector, AgreesWithWhatWasMeasured) {
    vectors::Verify(GetParam(), kChecks, kDeviations);
}

INSTANTIATE_TEST_SUITE_P(Measured, CollectionVector, testing::ValuesIn(RunnableScripts()),
                         vectors::NameOf);

// The driver inserts, exchanges and replaces nothing in arrays and data; it only appends and
// clears.
TEST(CollectionVectors, AreLeftOutOnlyForFunctionsThatAreNotProvided) {
    EXPECT_TRUE(vectors::Uncovered(kFile, kChecks).empty());
    std::map<std::string, int> leftOut;
    for (const Vector& vector : vectors::Covered(kFile, kChecks)) {
        if (CannotRun(vector)) {
            ++leftOut[vector.family];
        }
    }
    const std::map<std::string, int> expected = {
        {"array", 6}, {"data", 4}, {"dict-pointer", 3}, {"retain", 1}};
    EXPECT_EQ(leftOut, expected);
}

}  // namespace
