// Dictionaries, arrays, data and references, against measured scripts.
#include "tests/unit/CoreFoundation/Collections/CollectionScript.h"
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
    {"retain-016", {"step 2 [\"same\",\"a\",\"b\"] gave false instead of true", kNotShared}},
    {"retain-018", {"step 2 [\"same\",\"a\",\"b\"] gave false instead of true", kNotShared}},
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

// Nothing that the driver or the layer calls inserts, exchanges, replaces, copies or looks for
// anything in a container or in data.
TEST(CollectionVectors, AreLeftOutOnlyForFunctionsThatAreNotProvided) {
    EXPECT_TRUE(vectors::Uncovered(kFile, kChecks).empty());
    const std::map<std::string, std::string> functions = {
        {"array-002", "CFArrayContainsValue, CFArrayGetFirstIndexOfValue"},
        {"array-006", "CFArrayRemoveValueAtIndex"},
        {"array-007", "CFArrayExchangeValuesAtIndices"},
        {"array-008", "CFArrayRemoveValueAtIndex, CFArrayRemoveAllValues"},
        {"array-009", "CFArraySetValueAtIndex"},
        {"array-016", "CFArrayGetFirstIndexOfValue, CFArrayGetLastIndexOfValue"},
        {"array-017", "CFArrayAppendArray"},
        {"array-018", "CFArrayReplaceValues"},
        {"array-019", "CFArrayCreateCopy"},
        {"data-008", "CFDataCreateCopy, CFDataCreateMutableCopy"},
        {"data-009", "CFDataSetLength"},
        {"data-010", "CFDataDeleteBytes, CFDataReplaceBytes"},
        {"data-011", "CFDataIncreaseLength"},
        {"dict-pointer-005", "CFDictionaryReplaceValue"},
        {"dict-pointer-018", "CFDictionaryCreateMutableCopy"},
        {"dict-pointer-020", "CFDictionaryReplaceValue"},
        {"dict-type-027", "CFDictionaryCreateCopy"},
        {"retain-014", "CFDictionaryCreateMutableCopy"},
    };
    for (const Vector& vector : vectors::Covered(kFile, kChecks)) {
        EXPECT_EQ(CannotRun(vector), functions.contains(vector.id)) << vector.id;
    }
}

}  // namespace
