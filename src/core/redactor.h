#pragma once

#include <QString>

#include <optional>

namespace brimwatch {

/// Replaces what is private in texts that leave the program: the daemon's token by "…", the user's
/// home directory by "~". A daemon may put either into any text of its answer.
class Redactor {
public:
    /// A token of less than four characters is not worth hiding; neither is an empty home, nor "/",
    /// which is part of any path.
    Redactor(std::optional<QString> token, QString home);

    QString redacted(QString text) const;
    /// The text as asOneLine() writes it, redacted.
    QString line(const QString &text, qsizetype longest) const;

private:
    std::optional<QString> m_token; ///< Absent without one that is worth hiding.
    QString m_home; ///< Empty without one that is worth hiding.
};

} // namespace brimwatch
