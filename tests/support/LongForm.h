// Tests that rely on large numbers have two forms: a short one for every run, and a long one
// for `make endurance`, which sets KRT9_ENDURANCE.
#pragma once

#include <cstdlib>

namespace test_support {

inline int Repetitions(int shortForm, int longForm) {
    return getenv("KRT9_ENDURANCE") != nullptr ? longForm : shortForm;
}

}  // namespace test_support
