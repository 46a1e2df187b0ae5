#include "platform/linux/replacement.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

#include <array>
#include <utility>

namespace brimwatch::platform {
namespace {

// Set only for the program that runs in place of this one.
constexpr auto openingVariable = "BRIMWATCH_OPEN_POPOVER";

} // namespace

bool programWasReplaced(const QString &program)
{
    const QFileInfo installed(program);
    if (!installed.isFile() || !installed.isExecutable())
        return false;
    // The path of our file; the kernel appends " (deleted)" when the file is gone.
    const QString ours = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    return !ours.isEmpty() && !QFileInfo::exists(ours);
}

PopoverContentFactory unlessReplaced(PopoverContentFactory factory)
{
    return [factory = std::move(factory)]() -> std::unique_ptr<PopoverContent> {
        if (!programWasReplaced(QCoreApplication::applicationFilePath()))
            return factory();
        // Queued: who asked for the popover over the bus gets an answer first.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [] { QCoreApplication::exit(replacementStatus); },
            Qt::QueuedConnection);
        return nullptr;
    };
}

void continueAs(const QString &program, Opening opening)
{
    QByteArray path = QFile::encodeName(program);
    if (opening == Opening::Yes)
        qputenv(openingVariable, "1");
    const std::array<char *, 2> arguments{path.data(), nullptr};
    ::execv(path.constData(), arguments.data());
    qunsetenv(openingVariable);
}

bool takesOverOpening()
{
    return qEnvironmentVariableIsSet(openingVariable) && qunsetenv(openingVariable);
}

} // namespace brimwatch::platform
