#include "cli/terminal.h"

#include "core/plain_text.h"

#include <QByteArray>

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

namespace {

bool terminalIsUtf8 = false;

int widthOfTerminal()
{
    constexpr int usual = 80;
    constexpr int narrowest = 20;
    winsize size{};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return std::max(narrowest, int{size.ws_col});
    return usual;
}

} // namespace

void detectTerminal()
{
    // NOLINTBEGIN(concurrency-mt-unsafe): there is only one thread so far.
    terminalIsUtf8 = std::setlocale(LC_CTYPE, "") != nullptr
        && std::strcmp(::nl_langinfo(CODESET), "UTF-8") == 0;
    // NOLINTEND(concurrency-mt-unsafe)
}

TextLook lookOfStandardOutput()
{
    if (::isatty(STDOUT_FILENO) == 0)
        return {};
    const QByteArray terminal = qgetenv("TERM");
    return {.colors
        = qEnvironmentVariableIsEmpty("NO_COLOR") && !terminal.isEmpty() && terminal != "dumb",
        .bars = terminalIsUtf8 ? TextLook::Bars::Blocks : TextLook::Bars::Ascii,
        .width = widthOfTerminal()};
}

Written writeOut(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    const auto size = static_cast<std::size_t>(bytes.size());
    if (std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0)
        return Written::All;
    const int error = errno;
    if (error == EPIPE)
        return Written::NobodyReads;
    writeError(u"cannot write to standard output: %1"_s.arg(qt_error_string(error)));
    return Written::Failed;
}

void writeError(const QString &text)
{
    constexpr qsizetype longest = 4096;
    std::fprintf(stderr, "brimwatchctl: %s\n", asOneLine(text, longest).toUtf8().constData());
}

} // namespace brimwatch::cli
