#include "cli/command_line.h"

#include <QCommandLineOption>
#include <QCommandLineParser>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto commands = std::to_array<std::pair<QLatin1StringView, Command>>({
    {"status"_L1, Command::Status},
    {"refresh"_L1, Command::Refresh},
    {"toggle"_L1, Command::Toggle},
    {"settings"_L1, Command::Settings},
    {"diagnostics"_L1, Command::Diagnostics},
});

constexpr auto formats = std::to_array<std::pair<QLatin1StringView, Format>>({
    {"text"_L1, Format::Text},
    {"json"_L1, Format::Json},
    {"waybar"_L1, Format::Waybar},
    {"i3blocks"_L1, Format::I3blocks},
    {"template"_L1, Format::Template},
});

template <typename T, std::size_t size>
std::optional<T> named(
    const std::array<std::pair<QLatin1StringView, T>, size> &table, const QString &name)
{
    const auto *found = std::find_if(
        table.begin(), table.end(), [&name](const auto &row) { return row.first == name; });
    return found == table.end() ? std::nullopt : std::optional(found->second);
}

} // namespace

Result<Options, QString> parseCommandLine(const QStringList &arguments)
{
    const QCommandLineOption help(QStringList{u"h"_s, u"help"_s});
    const QCommandLineOption version(u"version"_s);
    const QCommandLineOption format(u"format"_s, {}, u"FORMAT"_s);
    const QCommandLineOption formatTemplate(u"template"_s, {}, u"TEXT"_s);
    const QCommandLineOption watch(u"watch"_s);
    QCommandLineParser parser;
    parser.addOptions({help, version, format, formatTemplate, watch});
    // The parser takes the first argument for the program's name.
    if (!parser.parse(QStringList(u"brimwatchctl"_s) + arguments))
        return fail(parser.errorText());
    if (parser.isSet(help))
        return Options{.command = Command::Help};
    if (parser.isSet(version))
        return Options{.command = Command::Version};

    const auto words = parser.positionalArguments();
    if (words.isEmpty())
        return fail(u"a command is missing"_s);
    const auto command = named(commands, words.constFirst());
    if (!command)
        return fail(u"unknown command '%1'"_s.arg(words.constFirst()));
    if (words.size() > 1)
        return fail(u"unknown argument '%1'"_s.arg(words[1]));
    const auto given = parser.optionNames();
    if (*command != Command::Status && !given.isEmpty()) {
        const QString option = "--"_L1 + given.constFirst();
        return fail(u"unknown argument '%1'"_s.arg(option));
    }

    Options options{.command = *command, .watch = parser.isSet(watch)};
    const bool hasTemplate = parser.isSet(formatTemplate);
    if (parser.isSet(format)) {
        const auto known = named(formats, parser.value(format));
        if (!known)
            return fail(u"unknown format '%1'"_s.arg(parser.value(format)));
        options.format = *known;
    } else if (hasTemplate) {
        options.format = Format::Template;
    }
    const bool takesTemplate = options.format == Format::Template;
    if (hasTemplate && !takesTemplate)
        return fail(u"--template goes with --format template alone"_s);
    if (takesTemplate && !hasTemplate)
        return fail(u"--format template needs --template TEXT"_s);
    return Template::parse(parser.value(formatTemplate)).map([&options](const Template &parsed) {
        options.formatTemplate = parsed;
        return options;
    });
}

QString helpText()
{
    return uR"(Usage: brimwatchctl status [--format FORMAT] [--template TEXT] [--watch]
       brimwatchctl refresh | toggle | settings | diagnostics
       brimwatchctl --version | --help

Shows how much Antigravity model quota is left, and works the running Brimwatch.

  status       print what is left
    --format   text (the default), json, waybar, i3blocks or template
    --template print TEXT with its fields filled in, such as
               '{title}', '{gemini.5h}', '{percentage}', '{tier}'; see brimwatchctl(1)
    --watch    print a line now and at each change, until interrupted
  refresh      ask for the quota anew, and wait for the answer
  toggle       open the popover, or close it
  settings     open the popover with the settings
  diagnostics  print a report for support; the daemon's token is cut

Exit status: 0 fine, 1 the lowest quota of the label is critical, 2 offline or
not running, 3 wrong usage. With --watch it is 0 at the end.
)"_s;
}

} // namespace brimwatch::cli
