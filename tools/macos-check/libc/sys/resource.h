// Minimal C library declarations for checking code for *-apple-macos13 on Linux.
// Written by hand from the ISO C and POSIX standards. Not Apple's headers; check only.
#pragma once
#include "types.h"
_MIN_BEGIN
typedef unsigned long long rlim_t;
struct rlimit { rlim_t rlim_cur, rlim_max; };
#define RLIMIT_FSIZE 1
#define RLIMIT_NOFILE 8
int getrlimit(int, struct rlimit *); int setrlimit(int, const struct rlimit *);
_MIN_END
