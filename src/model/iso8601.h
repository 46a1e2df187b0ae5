#pragma once

#include <QDateTime>
#include <QString>
#include <QStringView>

#include <optional>
#include <utility>

namespace brimwatch::model {

/// The moment that an ISO 8601 internet date-time names (RFC 3339 with "T", seconds and a zone, "Z"
/// or "+05:30"), with a fraction of one to nine digits (cut to milliseconds) or without. In UTC.
///
/// Absent for everything else, among it what other readers roll over or guess: 30 February, 24:00,
/// a leap second, spaces around the text, years before 1583, when the calendar was another one.
std::optional<QDateTime> parseInternetDateTime(QStringView text);

/// A timestamp as a daemon writes it, with the moment that it names, which is parsed once.
class Timestamp {
public:
    Timestamp(QString text) // Deliberate: not explicit. A text is a timestamp as it comes.
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
