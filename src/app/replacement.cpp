#include "app/replacement.h"

#include <QFile>
#include <QFileInfo>

#include <unistd.h>

#include <array>

namespace brimwatch::app {
namespace {

// For this process and the one that follows in its place alone.
constexpr auto openingVariable = "BRIMWATCH_OPEN_POPOVER";

} // namespace

bool programWasReplaced(const QString &program)
{
    const QFileInfo standing(program);
    if (!standing.isFile() || !standing.isExecutable())
        return false;
    // The kernel says where the file was, with a remark behind it when it is gone.
    const QString ours = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    return !ours.isEmpty() && !QFileInfo::exists(ours);
}

void continueAs(const QString &program)
{
    QByteArray path = QFile::encodeName(program);
    qputenv(openingVariable, "1");
    const std::array<char *, 2> arguments{path.data(), nullptr};
    ::execv(path.constData(), arguments.data());
    qunsetenv(openingVariable);
}

bool takesOverOpening()
{
    return qEnvironmentVariableIsSet(openingVariable) && qunsetenv(openingVariable);
}

} // namespace brimwatch::app
