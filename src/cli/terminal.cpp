#include "cli/output.h"

#include <QByteArray>
#include <QDateTime>

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <cstring>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

namespace {

bool terminalKnowsUnicode = true;

int widthOfTerminal()
{
    constexpr int usual = 80;
    constexpr int narrowest = 20;
    winsize size{};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return std::max(narrowest, int{size.ws_col});
    return usual;
}

QString ended(const QString &text)
{
    return text.isEmpty() || text.endsWith(u'\n') ? text : text + u'\n';
}

} // namespace

void rememberTerminal()
{
    // NOLINTBEGIN(concurrency-mt-unsafe): there is one thread yet.
    if (std::setlocale(LC_CTYPE, "") != nullptr)
        terminalKnowsUnicode = std::strcmp(::nl_langinfo(CODESET), "UTF-8") == 0;
    else
        terminalKnowsUnicode = false;
    // NOLINTEND(concurrency-mt-unsafe)
}

TextLook lookOfStandardOutput()
{
    if (::isatty(STDOUT_FILENO) == 0)
        return {};
    const QByteArray terminal = qgetenv("TERM");
    return {.colours
        = qEnvironmentVariableIsEmpty("NO_COLOR") && !terminal.isEmpty() && terminal != "dumb",
        .bars = terminalKnowsUnicode ? TextLook::Bars::Blocks : TextLook::Bars::Ascii,
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

Result<QString, QString> render(const Options &options, const Status &status, const TextLook &look)
{
    const auto now = QDateTime::currentDateTime();
    switch (options.format) {
    case Format::Text:
        return options.watch ? ended(renderLine(status)) : renderText(status, now, look);
    case Format::Json:
        return ended(renderJson(status, options.watch ? JsonShape::OneLine : JsonShape::Lines));
    case Format::Waybar:
        return ended(renderWaybar(status, now));
    case Format::I3blocks:
        return ended(
            renderI3blocks(status, options.watch ? BlockShape::OneLine : BlockShape::Whole));
    case Format::Template:
        break;
    }
    return renderTemplate(options.formatTemplate, status, now).map([](const QString &text) {
        return QString(text + u'\n');
    });
}

} // namespace brimwatch::cli
