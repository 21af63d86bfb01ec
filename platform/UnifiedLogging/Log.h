// What a log was created for.
#pragma once

#include <string>

struct os_log_s {
    std::string subsystem, category;
};
