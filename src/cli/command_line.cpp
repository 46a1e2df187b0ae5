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
    {"history"_L1, Command::History},
});

constexpr auto formats = std::to_array<std::pair<QLatin1StringView, Format>>({
    {"text"_L1, Format::Text},
    {"json"_L1, Format::Json},
    {"waybar"_L1, Format::Waybar},
    {"i3blocks"_L1, Format::I3blocks},
    {"template"_L1, Format::Template},
});

constexpr auto historyFormats = std::to_array<std::pair<QLatin1StringView, Format>>({
    {"text"_L1, Format::Text},
    {"json"_L1, Format::Json},
    {"csv"_L1, Format::Csv},
    {"svg"_L1, Format::Svg},
    {"html"_L1, Format::Html},
});

constexpr auto historyTasks = std::to_array<std::pair<QLatin1StringView, HistoryTask>>({
    {"score"_L1, HistoryTask::Score},
    {"open"_L1, HistoryTask::Open},
    {"clear"_L1, HistoryTask::Clear},
});

template <typename T, std::size_t size>
std::optional<T> named(
    const std::array<std::pair<QLatin1StringView, T>, size> &table, const QString &name)
{
    const auto *found = std::find_if(
        table.begin(), table.end(), [&name](const auto &row) { return row.first == name; });
    return found == table.end() ? std::nullopt : std::optional(found->second);
}

/// The options that a command takes.
QStringList optionsOf(Command command)
{
    if (command == Command::Status)
        return {u"format"_s, u"template"_s, u"watch"_s};
    if (command == Command::History)
        return {u"format"_s, u"score"_s, u"open"_s, u"clear"_s};
    return {};
}

Result<Options, QString> historyOptions(const QCommandLineParser &parser)
{
    Options options{.command = Command::History};
    for (const auto &[name, task] : historyTasks) {
        if (!parser.isSet(name))
            continue;
        if (options.historyTask != HistoryTask::Print)
            return fail(u"--score, --open and --clear exclude each other"_s);
        options.historyTask = task;
    }
    if (!parser.isSet(u"format"_s))
        return options;
    const QString format = parser.value(u"format"_s);
    const auto known = named(historyFormats, format);
    if (!known)
        return fail(u"unknown format '%1'"_s.arg(format));
    options.format = *known;
    const bool isScore = options.historyTask == HistoryTask::Score;
    if (isScore && options.format != Format::Text && options.format != Format::Json)
        return fail(u"--score has the formats text and json alone"_s);
    if (!isScore && options.historyTask != HistoryTask::Print)
        return fail(u"--open and --clear take no --format"_s);
    return options;
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
    for (const auto &[name, task] : historyTasks)
        parser.addOption(QCommandLineOption(name));
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
    const auto taken = optionsOf(*command);
    const auto given = parser.optionNames();
    for (const auto &name : given) {
        const QString option = "--"_L1 + name;
        if (!taken.contains(name))
            return fail(u"unknown argument '%1'"_s.arg(option));
    }
    if (*command == Command::History)
        return historyOptions(parser);

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
       brimwatchctl history [--format FORMAT] [--score | --open | --clear]
       brimwatchctl refresh | toggle | settings | diagnostics
       brimwatchctl --version | --help

Shows how much Antigravity model quota is left, and works the running Brimwatch.

  status       print what is left
    --format   text (the default), json, waybar, i3blocks or template
    --template print TEXT with its fields filled in, such as
               '{title}', '{gemini.5h}', '{percentage}', '{tier}'; see brimwatchctl(1)
    --watch    print a line now and at each change, until interrupted
  history      print what was used, window by window
    --format   text (the default), json, csv, svg or html
    --score    print how often the forecasts were right; text or json
    --open     open it as a page in the browser
    --clear    delete it
  refresh      ask for the quota anew, and wait for the answer
  toggle       open the popover, or close it
  settings     open the popover with the settings
  diagnostics  print a report for support; the daemon's token is cut

Exit status: 0 fine, 1 the lowest quota of the label is critical, 2 offline or
not running, 3 wrong usage. With --watch it is 0 at the end.
)"_s;
}

} // namespace brimwatch::cli
