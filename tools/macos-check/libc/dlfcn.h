// Minimal C library declarations for checking code for *-apple-macos13 on Linux.
// Written by hand from the ISO C and POSIX standards. Not Apple's headers; check only.
#pragma once
#include "_min.h"
_MIN_BEGIN
#define RTLD_LAZY 0x1
#define RTLD_NOW 0x2
#define RTLD_LOCAL 0x4
#define RTLD_GLOBAL 0x8
void *dlopen(const char *, int); void *dlsym(void *, const char *); int dlclose(void *); char *dlerror(void);
_MIN_END
