#include "options.h"

#include <QCommandLineParser>
#include <QDir>

namespace brimwatch::sample {

using namespace Qt::Literals::StringLiterals;

namespace {

// More would carry the shares through several windows between any two looks, and the dates out of
// their range.
constexpr double greatestSpeed = 1e6;

QString misbehaviourHelp()
{
    QString text;
    for (const auto &known : misbehaviourNames())
        text += "\n  "_L1 + known.name.leftJustified(20) + known.what;
    return text;
}

/// The options as Qt knows them. They register themselves with the parser.
struct CommandLine {
    CommandLine()
    {
        parser.setApplicationDescription(
            u"Plays the language-server daemon of the Antigravity IDE: announces itself in a "
            u"discovery file and\n"
            "answers quota requests on 127.0.0.1 with quota that is being used. For trying things "
            "out and for\n"
            "tests, which can also tell it to misbehave.\n"
            "\n"
            "When it listens and has written its file, it prints\n"
            "  ready http=PORT file=PATH pid=PID\n"
            "or https=PORT, and prints that again after it has moved to another port and file, "
            "which "
            "SIGUSR1\n"
            "makes it do. SIGTERM and SIGINT end it and remove its file.\n"
            "\n"
            "GET /__stats answers what came over the wire so far:\n"
            "  {\"requests\": N, \"connections\": N, \"floods\": N, \"flooded\": N, \"last\": "
            "{\"method\", \"path\", \"headerList\", \"body\"}}\n"
            "with how many floods have not ended, and how many bytes went into floods altogether.\n"
            "Requests for /__stats, and connections that only carried such, are not counted.\n"
            "\n"
            "Exit status: 0 after a signal, 1 when it cannot listen or write its file, 2 for a "
            "wrong command line.\n"
            "\n"
            "The kinds of --misbehave:"_s
            + misbehaviourHelp());
        parser.addOption(help);
        for (const auto *option :
            {&directory, &fileName, &token, &httpsOnly, &certificate, &key, &shape, &scenario,
                &summary, &speed, &misbehave, &redirectTo, &dribbleInterval, &log, &endWithStdin})
            parser.addOption(*option);
    }

    QCommandLineParser parser;
    QCommandLineOption help{{u"h"_s, u"help"_s}, u"Print this text and end."_s};
    QCommandLineOption directory{u"directory"_s,
        u"Write the discovery file into DIR instead of $HOME/.gemini/antigravity/daemon."_s,
        u"DIR"_s};
    QCommandLineOption fileName{
        u"file-name"_s, u"Name the discovery file NAME instead of ls_PID.json."_s, u"NAME"_s};
    QCommandLineOption token{
        u"token"_s, u"Announce and ask for TOKEN instead of a random token."_s, u"TOKEN"_s};
    QCommandLineOption httpsOnly{u"https-only"_s, u"Serve https and not http."_s};
    QCommandLineOption certificate{u"certificate"_s,
        u"The certificate for https, and its chain, as PEM. make-certificates.sh makes some."_s,
        u"FILE"_s};
    QCommandLineOption key{u"key"_s, u"The certificate's private key, as PEM."_s, u"FILE"_s};
    QCommandLineOption shape{u"shape"_s,
        u"Answer with the quota in an \"envelope\" (the default) or \"bare\"."_s, u"SHAPE"_s};
    QCommandLineOption scenario{u"scenario"_s,
        u"The quota to report: normal (the default), empty (no group), many (50 groups), "
        u"long-names (of 300\n"
        "characters), odd-names (other scripts, emoji, markup), low (the five-hour Gemini quota at 8 %)."_s,
        u"NAME"_s};
    QCommandLineOption summary{u"summary"_s,
        u"Answer with the bytes of FILE, read anew for each request, whatever they are."_s,
        u"FILE"_s};
    QCommandLineOption speed{u"speed"_s,
        u"Use quota X times as fast as in real time (default 1; 60 makes an hour of a minute). 0 "
        u"keeps every\n"
        "share where it starts."_s,
        u"X"_s};
    QCommandLineOption misbehave{
        u"misbehave"_s, u"Fail on purpose, in one of the ways listed above."_s, u"KIND"_s};
    QCommandLineOption redirectTo{
        u"redirect-to"_s, u"Where \"redirect\" sends its callers."_s, u"URL"_s};
    QCommandLineOption dribbleInterval{u"dribble-interval"_s,
        u"Milliseconds between two bytes of what dribbles (default 1000)."_s, u"MS"_s};
    QCommandLineOption log{u"log"_s,
        u"Print \"request N METHOD PATH at MS\" for each request, by the monotonic clock."_s};
    QCommandLineOption endWithStdin{u"end-with-stdin"_s,
        u"End when standard input does, so that the daemon does not outlive who started it."_s};
};

tl::unexpected<UsageError> wrong(const QCommandLineOption &option, const QString &value)
{
    return fail(UsageError{u"--%1 cannot be \"%2\""_s.arg(option.names().constFirst(), value)});
}

Result<void, UsageError> readValues(Options &options, const CommandLine &line)
{
    const auto &parser = line.parser;
    if (parser.isSet(line.fileName)) {
        const auto name = parser.value(line.fileName);
        if (name.isEmpty() || name.contains(u'/'))
            return wrong(line.fileName, name);
        options.fileName = name;
    }
    if (parser.isSet(line.shape)) {
        const auto name = parser.value(line.shape);
        if (name != "envelope"_L1 && name != "bare"_L1)
            return wrong(line.shape, name);
        options.shape = name == "bare"_L1 ? Shape::Bare : Shape::Envelope;
    }
    if (parser.isSet(line.scenario)) {
        const auto scenario = scenarioNamed(parser.value(line.scenario));
        if (!scenario)
            return wrong(line.scenario, parser.value(line.scenario));
        options.scenario = *scenario;
    }
    if (parser.isSet(line.dribbleInterval)) {
        const auto interval = parser.value(line.dribbleInterval).toInt();
        if (interval < 1)
            return wrong(line.dribbleInterval, parser.value(line.dribbleInterval));
        options.dribbleInterval = std::chrono::milliseconds(interval);
    }
    if (parser.isSet(line.speed)) {
        bool isNumber = false;
        options.speed = parser.value(line.speed).toDouble(&isNumber);
        const bool inRange = options.speed >= 0 && options.speed <= greatestSpeed;
        if (!isNumber || !inRange)
            return wrong(line.speed, parser.value(line.speed));
    }
    return {};
}

Result<void, UsageError> readMisbehaviour(Options &options, const CommandLine &line)
{
    const auto &parser = line.parser;
    if (parser.isSet(line.misbehave)) {
        options.misbehaviour = misbehaviourNamed(parser.value(line.misbehave));
        if (!options.misbehaviour)
            return wrong(line.misbehave, parser.value(line.misbehave));
    }
    const bool redirects = options.misbehaviour == Misbehaviour::Redirect;
    if (parser.isSet(line.redirectTo) != redirects)
        return fail(UsageError{u"--redirect-to and --misbehave redirect need each other"_s});
    if (redirects) {
        options.redirectTo = QUrl(parser.value(line.redirectTo), QUrl::StrictMode);
        if (!options.redirectTo.isValid() || options.redirectTo.isRelative())
            return wrong(line.redirectTo, parser.value(line.redirectTo));
    }
    return {};
}

Result<void, UsageError> readScheme(Options &options, const CommandLine &line)
{
    const auto &parser = line.parser;
    options.https = parser.isSet(line.httpsOnly);
    options.certificateFile = parser.value(line.certificate);
    options.keyFile = parser.value(line.key);
    const bool hasCertificate = !options.certificateFile.isEmpty() && !options.keyFile.isEmpty();
    if (options.https && !hasCertificate)
        return fail(UsageError{u"https needs --certificate and --key"_s});
    if (!options.https && (parser.isSet(line.certificate) || parser.isSet(line.key)))
        return fail(UsageError{u"--certificate and --key need --https-only"_s});
    return {};
}

} // namespace

Result<std::variant<Options, HelpWanted>, UsageError> parseOptions(const QStringList &arguments)
{
    CommandLine line;
    auto &parser = line.parser;
    if (!parser.parse(arguments))
        return fail(UsageError{parser.errorText()});
    if (parser.isSet(line.help))
        return HelpWanted{parser.helpText()};
    if (!parser.positionalArguments().isEmpty())
        return fail(UsageError{
            u"unexpected argument \"%1\""_s.arg(parser.positionalArguments().constFirst())});

    Options options;
    options.directory = parser.isSet(line.directory)
        ? parser.value(line.directory)
        : QDir::homePath() + "/.gemini/antigravity/daemon"_L1;
    if (parser.isSet(line.token))
        options.token = parser.value(line.token);
    if (parser.isSet(line.summary))
        options.summaryFile = parser.value(line.summary);
    options.log = parser.isSet(line.log);
    options.endWithStdin = parser.isSet(line.endWithStdin);

    return readValues(options, line)
        .and_then([&] { return readMisbehaviour(options, line); })
        .and_then([&] { return readScheme(options, line); })
        .map([&] { return std::variant<Options, HelpWanted>(std::move(options)); });
}

} // namespace brimwatch::sample
