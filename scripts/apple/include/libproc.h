// Processes and what is known of them.
#pragma once

#include <stdint.h>

#define MAXCOMLEN 16
#define PROC_UID_ONLY 4
#define PROC_PIDPATHINFO_MAXSIZE 4096

extern "C" {

int proc_listpids(uint32_t type, uint32_t typeinfo, void* buffer, int buffersize);
int proc_name(int pid, void* buffer, uint32_t buffersize);
int proc_pidpath(int pid, void* buffer, uint32_t buffersize);

}  // extern "C"
