// What libc++ asks of the C library of macOS and the C library of Linux declares elsewhere or not
// at all.
#pragma once
#include <locale.h>
#include <stdarg.h>
#include <stddef.h>
extern "C" {
float strtof_l(const char*, char**, locale_t);
double strtod_l(const char*, char**, locale_t);
long double strtold_l(const char*, char**, locale_t);
long long strtoll_l(const char*, char**, int, locale_t);
unsigned long long strtoull_l(const char*, char**, int, locale_t);
int sscanf_l(const char*, locale_t, const char*, ...);
int snprintf_l(char*, size_t, locale_t, const char*, ...);
int asprintf_l(char**, locale_t, const char*, ...);
}
