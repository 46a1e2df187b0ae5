#pragma once

#include "cli/status.h"
#include "core/result.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace brimwatch::cli {

/// A text with fields to fill in: "{title}", "{gemini.5h}". "{{" and "}}" are braces; "\n", "\t"
/// and "\\" are a line feed, a tab and a backslash.
class Template {
public:
    Template() = default;

    /// The error names the brace or the field that is wrong.
    static Result<Template, QString> parse(const QString &text);

    /// The text with its fields filled in. A field whose value is not known is empty; a color is
    /// grey then. No line feed is added.
    QString render(const Status &status, const QDateTime &now) const;

    bool operator==(const Template &other) const { return m_text == other.m_text; }

private:
    using Part = std::function<QString(const Status &, const QDateTime &now)>;

    static std::optional<Part> field(const QString &name);

    QString m_text; ///< As it was given.
    QList<Part> m_parts;
};

/// The names of all fields that do not name a group, for the documentation's test.
QStringList templateFields();

} // namespace brimwatch::cli
