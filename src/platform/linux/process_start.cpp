#include "platform/linux/process_start.h"

#include <QByteArray>
#include <QByteArrayList>

#include <fcntl.h>
#include <pwd.h>
#include <unistd.h>

namespace brimwatch::platform {
namespace {

void openStandardDescriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // Deliberate: opened the other way round, so that reading or writing still fails. The
        // lowest number that is free is this one.
        if (::fcntl(descriptor, F_GETFD) == -1)
            static_cast<void>(
                ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
}

bool isAbsolute(const QByteArray &path)
{
    return path.startsWith('/');
}

void correctFolders()
{
    if (!isAbsolute(qgetenv("HOME"))) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): there is only one thread so far.
        const passwd *user = ::getpwuid(::getuid());
        if (user != nullptr && isAbsolute(user->pw_dir))
            qputenv("HOME", user->pw_dir);
        else
            qunsetenv("HOME");
    }
    for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME",
             "XDG_RUNTIME_DIR"}) {
        if (!isAbsolute(qgetenv(name)))
            qunsetenv(name);
    }
    for (const char *name : {"XDG_CONFIG_DIRS", "XDG_DATA_DIRS"}) {
        auto folders = qgetenv(name).split(':');
        if (folders.removeIf([](const QByteArray &folder) { return !isAbsolute(folder); }) == 0)
            continue;
        if (folders.isEmpty())
            qunsetenv(name);
        else
            qputenv(name, folders.join(':'));
    }
}

} // namespace

void beginProcess()
{
    openStandardDescriptors();
    correctFolders();
}

} // namespace brimwatch::platform
