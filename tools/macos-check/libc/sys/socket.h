// Minimal C library declarations for checking code for *-apple-macos13 on Linux.
// Written by hand from the POSIX standard and the documented values. Not Apple's headers; check only.
#pragma once
#include "types.h"
_MIN_BEGIN
typedef unsigned int socklen_t; typedef unsigned char sa_family_t;
struct sockaddr { unsigned char sa_len; sa_family_t sa_family; char sa_data[14]; };
#define AF_INET 2
#define SOCK_STREAM 1
#define SOL_SOCKET 0xffff
#define SO_ERROR 0x1007
#define SO_NOSIGPIPE 0x1022
int socket(int, int, int); int connect(int, const struct sockaddr *, socklen_t);
int getsockopt(int, int, int, void *, socklen_t *); int setsockopt(int, int, int, const void *, socklen_t);
ssize_t send(int, const void *, size_t, int); ssize_t recv(int, void *, size_t, int);
struct linger { int l_onoff, l_linger; };
#define SO_LINGER 0x80
_MIN_END
