#include "cli/command_line.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::cli;

class CliCommandLineTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatMakesSenseIsUnderstood_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<Options>("expected");
        const auto row = [](const char *line, const Options &options) {
            QTest::newRow(line) << QString::fromLatin1(line) << options;
        };
        row("status", {});
        row("status --watch", {.watch = true});
        row("status --format json", {.format = Format::Json});
        row("status --format=waybar --watch", {.format = Format::Waybar, .watch = true});
        row("status --watch --format i3blocks", {.format = Format::I3blocks, .watch = true});
        row("status --format text --format json", {.format = Format::Json});
        row("status --format template --template {title}",
            {.format = Format::Template, .formatTemplate = *Template::parse(u"{title}"_s)});
        row("status --template={title}",
            {.format = Format::Template, .formatTemplate = *Template::parse(u"{title}"_s)});
        row("status --template --watch",
            {.format = Format::Template, .formatTemplate = *Template::parse(u"--watch"_s)});
        row("--watch status", {.watch = true});
        row("refresh", {.command = Command::Refresh});
        row("toggle", {.command = Command::Toggle});
        row("settings", {.command = Command::Settings});
        row("diagnostics", {.command = Command::Diagnostics});
        row("history", {.command = Command::History});
        row("history --format csv", {.command = Command::History, .format = Format::Csv});
        row("history --format=html", {.command = Command::History, .format = Format::Html});
        row("history --clear", {.command = Command::History, .historyTask = HistoryTask::Clear});
        row("history --open", {.command = Command::History, .historyTask = HistoryTask::Open});
        row("history --score --format json",
            {.command = Command::History,
                .format = Format::Json,
                .historyTask = HistoryTask::Score});
        row("--version", {.command = Command::Version});
        row("--help", {.command = Command::Help});
        row("-h", {.command = Command::Help});
        row("toggle --help", {.command = Command::Help});
        row("--version --help", {.command = Command::Help});
    }
    void whatMakesSenseIsUnderstood()
    {
        QFETCH(QString, line);
        QFETCH(Options, expected);
        const auto options = parseCommandLine(line.split(u' '));
        QVERIFY2(options, options ? "" : qPrintable(options.error()));
        QVERIFY(*options == expected);
    }

    void whatDoesNotIsNamed_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("error");
        const auto row = [](const QStringList &arguments, const QString &error) {
            QTest::addRow("%d: %s", int(arguments.size()), qPrintable(arguments.join(u' ')))
                << arguments << error;
        };
        row({}, u"a command is missing"_s);
        row({u""_s}, u"unknown command ''"_s);
        row({u"configure"_s}, u"unknown command 'configure'"_s);
        row({u"--watch"_s}, u"a command is missing"_s);
        row({u"status"_s, u"--clear"_s}, u"unknown argument '--clear'"_s);
        row({u"status"_s, u"--format"_s, u"csv"_s}, u"unknown format 'csv'"_s);
        row({u"history"_s, u"--watch"_s}, u"unknown argument '--watch'"_s);
        row({u"history"_s, u"--format"_s, u"waybar"_s}, u"unknown format 'waybar'"_s);
        row({u"history"_s, u"--clear"_s, u"--format"_s, u"csv"_s},
            u"--open and --clear take no --format"_s);
        row({u"history"_s, u"--score"_s, u"--format"_s, u"html"_s},
            u"--score has the formats text and json alone"_s);
        row({u"history"_s, u"--score"_s, u"--clear"_s},
            u"--score, --open and --clear exclude each other"_s);
        row({u"toggle"_s, u"now"_s}, u"unknown argument 'now'"_s);
        row({u"toggle"_s, u"--watch"_s}, u"unknown argument '--watch'"_s);
        row({u"status"_s, u"--color"_s}, u"Unknown option 'color'."_s);
        row({u"status"_s, u"-x"_s}, u"Unknown option 'x'."_s);
        row({u"status"_s, u"--watch=yes"_s}, u"Unexpected value after '--watch'."_s);
        row({u"status"_s, u"--format"_s}, u"Missing value after '--format'."_s);
        row({u"status"_s, u"--formatjson"_s}, u"Unknown option 'formatjson'."_s);
        row({u"status"_s, u"--format"_s, u"xml"_s}, u"unknown format 'xml'"_s);
        row({u"status"_s, u"--format="_s}, u"unknown format ''"_s);
        row({u"status"_s, u"--format"_s, u"template"_s},
            u"--format template needs --template TEXT"_s);
        row({u"status"_s, u"--template"_s}, u"Missing value after '--template'."_s);
        row({u"status"_s, u"--template"_s, u"{titel}"_s},
            u"the template's field '{titel}' does not exist"_s);
        row({u"status"_s, u"--format"_s, u"json"_s, u"--template"_s, u"x"_s},
            u"--template goes with --format template alone"_s);
    }
    void whatDoesNotIsNamed()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, error);
        const auto options = parseCommandLine(arguments);
        QVERIFY(!options);
        QCOMPARE(options.error(), error);
    }
};

QTEST_APPLESS_MAIN(CliCommandLineTest)

#include "cli_command_line_test.moc"
