#include "model/iso8601.h"

#include <QTimeZone>

namespace brimwatch::model {
namespace {

/// Walks over a text. Once something was not as asked for, it stays failed.
class Cursor {
public:
    explicit Cursor(QStringView text)
        : m_rest(text)
    {
    }

    bool isDone() const { return !m_failed && m_rest.isEmpty(); }

    /// A number of exactly that many ASCII digits.
    int number(qsizetype digits)
    {
        int value = 0;
        for (qsizetype i = 0; i < digits; ++i)
            value = value * 10 + digit();
        return value;
    }

    void expect(char16_t character)
    {
        if (!skip(character))
            m_failed = true;
    }

    bool skip(char16_t character)
    {
        if (!m_rest.startsWith(QChar(character)))
            return false;
        m_rest = m_rest.sliced(1);
        return true;
    }

    /// The milliseconds of a fraction of one to nine digits.
    int milliseconds()
    {
        constexpr int mostDigits = 9;
        int value = 0;
        int count = 0;
        for (; isDigit() || count == 0; ++count) {
            const int next = digit();
            if (m_failed || count == mostDigits) {
                m_failed = true;
                return 0;
            }
            if (count < 3)
                value = value * 10 + next;
        }
        for (; count < 3; ++count)
            value *= 10;
        return value;
    }

private:
    bool isDigit() const
    {
        return !m_rest.isEmpty() && m_rest.front() >= u'0' && m_rest.front() <= u'9';
    }

    int digit()
    {
        if (!isDigit()) {
            m_failed = true;
            return 0;
        }
        const int value = m_rest.front().unicode() - u'0';
        m_rest = m_rest.sliced(1);
        return value;
    }

    QStringView m_rest;
    bool m_failed = false;
};

} // namespace

std::optional<QDateTime> parseInternetDateTime(QStringView text)
{
    Cursor cursor(text);
    const int year = cursor.number(4);
    cursor.expect(u'-');
    const int month = cursor.number(2);
    cursor.expect(u'-');
    const int day = cursor.number(2);
    cursor.expect(u'T');
    const int hour = cursor.number(2);
    cursor.expect(u':');
    const int minute = cursor.number(2);
    cursor.expect(u':');
    const int second = cursor.number(2);
    const int millisecond = cursor.skip(u'.') ? cursor.milliseconds() : 0;

    int offsetSeconds = 0;
    if (!cursor.skip(u'Z')) {
        const int sign = cursor.skip(u'-') ? -1 : 1;
        if (sign > 0)
            cursor.expect(u'+');
        const int offsetHours = cursor.number(2);
        cursor.expect(u':');
        const int offsetMinutes = cursor.number(2);
        if (offsetHours > 23 || offsetMinutes > 59)
            return std::nullopt;
        offsetSeconds = sign * (offsetHours * 3600 + offsetMinutes * 60);
    }

    const QDate date(year, month, day);
    const QTime time(hour, minute, second, millisecond);
    constexpr int firstGregorianYear = 1583;
    if (!cursor.isDone() || year < firstGregorianYear || !date.isValid() || !time.isValid())
        return std::nullopt;
    return QDateTime(date, time, Qt::UTC).addSecs(-offsetSeconds);
}

} // namespace brimwatch::model
