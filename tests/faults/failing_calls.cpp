// Stands between the program and the C library: what is linked before it is asked for these
// functions first, by all libraries of the process.
#include "faults/failing_calls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>

namespace brimwatch::test {
namespace {

struct Plan {
    bool isArmed = false;
    Call call = Call::Open;
    long number = 0;
    long counted = 0;
};
thread_local Plan plan;

/// Whether this one is to fail.
bool fails(Call call, int error)
{
    if (!plan.isArmed || plan.call != call || plan.counted++ != plan.number)
        return false;
    errno = error;
    return true;
}

/// The C library's own.
template <typename Function> Function next(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

/// The mode that follows the flags of a call that may make a file.
bool hasMode(int flags)
{
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

} // namespace

void failCall(Call call, long number)
{
    plan = {.isArmed = true, .call = call, .number = number, .counted = 0};
}

long countedCalls()
{
    plan.isArmed = false;
    return plan.counted;
}

} // namespace brimwatch::test

using brimwatch::test::Call;
using brimwatch::test::fails;
using brimwatch::test::hasMode;
using brimwatch::test::next;

#pragma GCC visibility push(default)
extern "C" {

#define BRIMWATCH_OPEN(NAME)                                                                       \
    int NAME(const char *path, int flags, ...)                                                     \
    {                                                                                              \
        static const auto real = next<int (*)(const char *, int, ...)>(#NAME);                     \
        if (fails(Call::Open, EMFILE))                                                             \
            return -1;                                                                             \
        if (!hasMode(flags))                                                                       \
            return real(path, flags);                                                              \
        va_list arguments;                                                                         \
        va_start(arguments, flags);                                                                \
        const auto mode = va_arg(arguments, mode_t);                                               \
        va_end(arguments);                                                                         \
        return real(path, flags, mode);                                                            \
    }
BRIMWATCH_OPEN(open)
BRIMWATCH_OPEN(open64)

#define BRIMWATCH_OPENAT(NAME)                                                                     \
    int NAME(int folder, const char *path, int flags, ...)                                         \
    {                                                                                              \
        static const auto real = next<int (*)(int, const char *, int, ...)>(#NAME);                \
        if (fails(Call::Open, EMFILE))                                                             \
            return -1;                                                                             \
        if (!hasMode(flags))                                                                       \
            return real(folder, path, flags);                                                      \
        va_list arguments;                                                                         \
        va_start(arguments, flags);                                                                \
        const auto mode = va_arg(arguments, mode_t);                                               \
        va_end(arguments);                                                                         \
        return real(folder, path, flags, mode);                                                    \
    }
BRIMWATCH_OPENAT(openat)
BRIMWATCH_OPENAT(openat64)

ssize_t read(int file, void *buffer, size_t size)
{
    static const auto real = next<ssize_t (*)(int, void *, size_t)>("read");
    return fails(Call::Read, EIO) ? -1 : real(file, buffer, size);
}

ssize_t recv(int socket, void *buffer, size_t size, int flags)
{
    static const auto real = next<ssize_t (*)(int, void *, size_t, int)>("recv");
    return fails(Call::Read, ECONNRESET) ? -1 : real(socket, buffer, size, flags);
}

ssize_t write(int file, const void *buffer, size_t size)
{
    static const auto real = next<ssize_t (*)(int, const void *, size_t)>("write");
    return fails(Call::Write, ENOSPC) ? -1 : real(file, buffer, size);
}

ssize_t send(int socket, const void *buffer, size_t size, int flags)
{
    static const auto real = next<ssize_t (*)(int, const void *, size_t, int)>("send");
    return fails(Call::Write, EPIPE) ? -1 : real(socket, buffer, size, flags);
}

ssize_t sendmsg(int socket, const msghdr *message, int flags)
{
    static const auto real = next<ssize_t (*)(int, const msghdr *, int)>("sendmsg");
    return fails(Call::Write, EPIPE) ? -1 : real(socket, message, flags);
}

int rename(const char *from, const char *to)
{
    static const auto real = next<int (*)(const char *, const char *)>("rename");
    return fails(Call::Rename, EACCES) ? -1 : real(from, to);
}

int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags)
{
    static const auto real = next<int (*)(int, const char *, int, const char *, int)>("linkat");
    return fails(Call::Rename, EACCES) ? -1 : real(fromFolder, from, toFolder, to, flags);
}

int connect(int socket, const sockaddr *address, socklen_t size)
{
    static const auto real = next<int (*)(int, const sockaddr *, socklen_t)>("connect");
    return fails(Call::Connect, ENETUNREACH) ? -1 : real(socket, address, size);
}
}
#pragma GCC visibility pop
