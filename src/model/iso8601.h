#pragma once

#include <QDateTime>
#include <QString>
#include <QStringView>

#include <optional>
#include <utility>

namespace brimwatch::model {

/// The moment of an ISO 8601 internet date-time, in UTC: RFC 3339 with "T", seconds and a zone ("Z"
/// or
/// "+05:30"), with or without a fraction of one to nine digits, which is truncated to milliseconds.
///
/// Absent for everything else, also for what other parsers accept: 30 February, 24:00, a leap
/// second, spaces around the text, and years before 1583, when another calendar was used.
std::optional<QDateTime> parseInternetDateTime(QStringView text);

/// A timestamp as a daemon writes it, with the moment that it names, which is parsed once.
class Timestamp {
public:
    Timestamp(QString text) // Deliberate: not explicit, so that a record takes a decoded text.
        : m_text(std::move(text))
        , m_moment(parseInternetDateTime(m_text))
    {
    }

    const QString &text() const { return m_text; }
    /// In UTC; absent when the text is no ISO 8601 internet date-time.
    const std::optional<QDateTime> &moment() const { return m_moment; }

    bool operator==(const Timestamp &other) const { return m_text == other.m_text; }

private:
    QString m_text;
    std::optional<QDateTime> m_moment;
};

} // namespace brimwatch::model
