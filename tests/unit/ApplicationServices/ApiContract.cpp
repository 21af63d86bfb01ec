#include "tests/unit/ApplicationServices/ApiContract.h"
