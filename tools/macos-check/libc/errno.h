// Minimal C library declarations for checking code for *-apple-macos13 on Linux.
// Written by hand from the ISO C and POSIX standards. Not Apple's headers; check only.
#pragma once
#include "_min.h"
_MIN_BEGIN
int *__error(void);
_MIN_END
#define errno (*__error())
#define EPERM 1
#define ENOENT 2
#define ESRCH 3
#define EINTR 4
#define EIO 5
#define ENOMEM 12
#define EACCES 13
#define EBUSY 16
#define EEXIST 17
#define ENOTDIR 20
#define EISDIR 21
#define EINVAL 22
#define ENOSPC 28
#define EPIPE 32
#define EDOM 33
#define ERANGE 34
#define EAGAIN 35
#define EDEADLK 11
#define ETIMEDOUT 60
#define ENOTSUP 45
#define ENOSYS 78
#define EOVERFLOW 84
#define EILSEQ 92
#define ENFILE 23
#define EMFILE 24
#define EWOULDBLOCK EAGAIN
#define EINPROGRESS 36
#define EADDRNOTAVAIL 49
#define ENETDOWN 50
#define ENETUNREACH 51
#define ECONNRESET 54
#define ENOBUFS 55
#define ECONNREFUSED 61
#define EHOSTUNREACH 65
