#include "cli/command_line.h"

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
    {"--version"_L1, Command::Version},
    {"--help"_L1, Command::Help},
    {"-h"_L1, Command::Help},
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

/// Reads "--NAME VALUE" and "--NAME=VALUE" at `index`, and moves that to the last argument taken.
/// Absent when it is not that option; an empty optional inside when the value is missing.
std::optional<std::optional<QString>> valueOf(
    QLatin1StringView name, const QStringList &arguments, qsizetype &index)
{
    const QString &argument = arguments[index];
    if (argument == name) {
        if (index + 1 == arguments.size())
            return std::optional<QString>();
        return std::optional(arguments[++index]);
    }
    if (argument.startsWith(name) && argument.mid(name.size()).startsWith(u'='))
        return std::optional(argument.mid(name.size() + 1));
    return std::nullopt;
}

Result<void, QString> readStatusOptions(const QStringList &arguments, Options &options)
{
    bool hasFormat = false;
    bool hasTemplate = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments[i];
        if (argument == "--watch"_L1) {
            options.watch = true;
        } else if (const auto format = valueOf("--format"_L1, arguments, i)) {
            if (!*format)
                return fail(u"--format needs a value"_s);
            const auto known = named(formats, **format);
            if (!known)
                return fail(u"unknown format '%1'"_s.arg(**format));
            options.format = *known;
            hasFormat = true;
        } else if (const auto text = valueOf("--template"_L1, arguments, i)) {
            if (!*text)
                return fail(u"--template needs a value"_s);
            options.formatTemplate = **text;
            hasTemplate = true;
        } else {
            return fail(u"unknown argument '%1'"_s.arg(argument));
        }
    }
    if (hasTemplate && !hasFormat)
        options.format = Format::Template;
    if (hasTemplate && options.format != Format::Template)
        return fail(u"--template goes with --format template alone"_s);
    if (options.format == Format::Template && !hasTemplate)
        return fail(u"--format template needs --template TEXT"_s);
    return {};
}

} // namespace

Result<Options, QString> parseCommandLine(const QStringList &arguments)
{
    if (arguments.isEmpty())
        return fail(u"a command is missing"_s);
    const auto command = named(commands, arguments.constFirst());
    if (!command)
        return fail(u"unknown command '%1'"_s.arg(arguments.constFirst()));
    Options options{.command = *command};
    const auto rest = arguments.mid(1);
    if (*command == Command::Status) {
        if (const auto read = readStatusOptions(rest, options); !read)
            return fail(read.error());
    } else if (!rest.isEmpty()) {
        return fail(u"unknown argument '%1'"_s.arg(rest.constFirst()));
    }
    return options;
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
