// Minimal C library declarations for checking code for *-apple-macos13 on Linux.
// Written by hand from the POSIX standard and the documented values. Not Apple's headers; check only.
#pragma once
#include "../sys/socket.h"
_MIN_BEGIN
typedef unsigned short in_port_t; typedef unsigned int in_addr_t;
struct in_addr { in_addr_t s_addr; };
struct sockaddr_in { unsigned char sin_len; sa_family_t sin_family; in_port_t sin_port; struct in_addr sin_addr; char sin_zero[8]; };
#define INADDR_LOOPBACK 0x7f000001U
_MIN_END
// Both processors are little-endian.
#define htons(x) __builtin_bswap16(x)
#define htonl(x) __builtin_bswap32(x)
