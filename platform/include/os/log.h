// Logs of the unified logging system.
#pragma once

extern "C" {

using os_log_t = struct os_log_s*;

// The same object for the same two texts. Never null; lives as long as the process.
os_log_t os_log_create(const char* subsystem, const char* category);

}  // extern "C"
