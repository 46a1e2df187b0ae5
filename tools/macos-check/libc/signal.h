// Minimal C library declarations for checking code for *-apple-macos13 on Linux.
// Written by hand from the ISO C and POSIX standards. Not Apple's headers; check only.
#pragma once
#include "sys/types.h"
_MIN_BEGIN
typedef int sig_atomic_t; int kill(int, int); int raise(int); void (*signal(int, void (*)(int)))(int);
#define SIGHUP 1
#define SIGINT 2
#define SIGABRT 6
#define SIGKILL 9
#define SIGPIPE 13
#define SIGTERM 15
#define SIGXFSZ 25
#define SIGUSR1 30
#define SIGUSR2 31
#define SIG_DFL ((void (*)(int))0)
#define SIG_IGN ((void (*)(int))1)
typedef unsigned sigset_t;
struct sigaction { union { void (*__sa_handler)(int); } __sigaction_u; sigset_t sa_mask; int sa_flags; };
#define sa_handler __sigaction_u.__sa_handler
#define SA_RESTART 2
int sigaction(int, const struct sigaction *, struct sigaction *); int sigemptyset(sigset_t *);
_MIN_END
