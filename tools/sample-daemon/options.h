#pragma once

#include "core/result.h"
#include "misbehaviour.h"
#include "sample_quota.h"

#include <QString>
#include <QStringList>
#include <QUrl>

#include <chrono>
#include <optional>
#include <variant>

namespace brimwatch::sample {

enum class Shape {
    Envelope, ///< `{"response": {"groups": …}}`
    Bare, ///< `{"groups": …}`
};

/// What the command line asks for, checked: all of it can be done.
struct Options {
    QString directory;
    std::optional<QString> fileName; ///< Absent: `ls_` and the pid.
    std::optional<QString> token; ///< Absent: a new random one each time a file is written.
    bool https = false; ///< Instead of http.
    QString certificateFile;
    QString keyFile;
    Shape shape = Shape::Envelope;
    Scenario scenario = Scenario::Normal;
    std::optional<QString> summaryFile;
    double speed = 1;
    std::optional<Misbehaviour> misbehaviour;
    QUrl redirectTo;
    std::chrono::milliseconds dribbleInterval{1000};
    bool log = false;
    bool endWithStdin = false;
};

struct HelpWanted {
    QString text;
};

struct UsageError {
    QString message;
};

/// Reads the command line, the program's name first.
Result<std::variant<Options, HelpWanted>, UsageError> parseOptions(const QStringList &arguments);

} // namespace brimwatch::sample
