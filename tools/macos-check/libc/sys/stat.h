// Minimal C library declarations for checking code for *-apple-macos13 on Linux.
// Written by hand from the ISO C and POSIX standards. Not Apple's headers; check only.
#pragma once
#include "types.h"
_MIN_BEGIN
struct stat { dev_t st_dev; mode_t st_mode; unsigned short st_nlink; ino_t st_ino; uid_t st_uid; gid_t st_gid; dev_t st_rdev; struct timespec st_atimespec, st_mtimespec, st_ctimespec, st_birthtimespec; off_t st_size; };
#define S_IFMT 0170000
#define S_IRUSR 0000400
#define S_IWUSR 0000200
#define S_ISREG(m) (((m) & S_IFMT) == 0100000)
#define S_ISDIR(m) (((m) & S_IFMT) == 0040000)
int stat(const char *, struct stat *); int fstat(int, struct stat *); int lstat(const char *, struct stat *); int fstatat(int, const char *, struct stat *, int); int mkfifo(const char *, mode_t); mode_t umask(mode_t); int chmod(const char *, mode_t); int mkdir(const char *, mode_t);
_MIN_END
