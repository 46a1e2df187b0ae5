// Minimal C library declarations for checking code for *-apple-macos13 on Linux.
// Written by hand from the ISO C and POSIX standards. Not Apple's headers; check only.
#pragma once
#include "_min.h"
_MIN_BEGIN
typedef int sig_atomic_t; int kill(int, int); int raise(int); void (*signal(int, void (*)(int)))(int);
#define SIGABRT 6
#define SIGTERM 15
_MIN_END
