#include "cli/terminal.h"

#include <QByteArray>

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstring>

namespace brimwatch::cli {

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

bool writeOut(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    return std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout)
        == static_cast<std::size_t>(bytes.size())
        && std::fflush(stdout) == 0;
}

void writeError(const QString &text)
{
    std::fprintf(stderr, "brimwatchctl: %s\n", text.toUtf8().constData());
}

} // namespace brimwatch::cli
