// Minimal C library declarations for checking code for *-apple-macos13 on Linux.
// Written by hand from the ISO C and POSIX standards. Not Apple's headers; check only.
#pragma once
#include "sys/types.h"
_MIN_BEGIN
#define O_RDONLY 0x0000
#define O_WRONLY 0x0001
#define O_APPEND 0x0008
#define O_CREAT 0x0200
#define O_NONBLOCK 0x0004
#define O_NOFOLLOW 0x0100
#define O_DIRECTORY 0x100000
#define O_NOCTTY 0x20000
#define O_CLOEXEC 0x1000000
#define F_SETFD 2
#define F_SETFL 4
#define FD_CLOEXEC 1
#define AT_FDCWD (-2)
#define AT_SYMLINK_NOFOLLOW 0x0020
int open(const char *, int, ...); int openat(int, const char *, int, ...); int fcntl(int, int, ...);
_MIN_END
