// Minimal C library declarations for checking code for *-apple-macos13 on Linux.
// Written by hand from the ISO C and POSIX standards. Not Apple's headers; check only.
#pragma once
#include "sys/types.h"
_MIN_BEGIN
typedef struct _min_DIR DIR;
struct dirent { ino_t d_ino; unsigned long long d_seekoff; unsigned short d_reclen, d_namlen; unsigned char d_type; char d_name[1024]; };
DIR *opendir(const char *); DIR *fdopendir(int); struct dirent *readdir(DIR *); int closedir(DIR *); int dirfd(DIR *);
_MIN_END
