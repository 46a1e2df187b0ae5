// Minimal C library declarations for checking code for *-apple-macos13 on Linux.
// Written by hand from the ISO C and POSIX standards. Not Apple's headers; check only.
#pragma once
#include "types.h"
_MIN_BEGIN
#define WIFEXITED(status) (((status) & 0177) == 0)
#define WEXITSTATUS(status) (((status) >> 8) & 0377)
#define WIFSIGNALED(status) (((status) & 0177) != 0177 && ((status) & 0177) != 0)
#define WTERMSIG(status) ((status) & 0177)
pid_t wait(int *); pid_t waitpid(pid_t, int *, int);
_MIN_END
