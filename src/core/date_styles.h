#pragma once

#include <QDateTime>
#include <QString>

#include <memory>

namespace brimwatch {

/// Dates and times as the reader's locale writes them, from the data of ICU: the space before AM
/// and PM is a plain one, and date and time are joined as the locale joins them in its long form
/// ("Nov 16, 2026 at 4:59:24 AM").
///
/// A date is shown in the time zone that it carries. Formats are made when first asked for, and
/// kept.
class DateStyles {
public:
    /// `locale` is a name such as "en_US" or "pt_BR"; one that ICU does not know falls back as ICU
    /// does, one that is no name at all is "en_US".
    explicit DateStyles(const QString &locale);
    ~DateStyles();
    DateStyles(const DateStyles &) = delete;
    DateStyles &operator=(const DateStyles &) = delete;
    DateStyles(DateStyles &&) = delete;
    DateStyles &operator=(DateStyles &&) = delete;

    /// The styles of the user's locale for dates: LC_ALL, LC_TIME or LANG, the first that is set
    /// and not empty, read once.
    static const DateStyles &user();

    /// The time without seconds: "9:00 AM".
    QString timeShortened(const QDateTime &date) const;
    /// Date and time without seconds: "Nov 17, 2026 at 9:00 AM".
    QString dateAbbreviatedTimeShortened(const QDateTime &date) const;
    /// Date and time with seconds: "Nov 16, 2026 at 4:59:24 AM".
    QString dateAbbreviatedTimeStandard(const QDateTime &date) const;

private:
    struct Formats;
    std::unique_ptr<Formats> m_formats;
};

/// The locale for dates that the environment names, without encoding and modifier
/// ("de_DE.UTF-8@euro" gives "de_DE"). "C", "POSIX" and an environment that names none give
/// "en_US".
QString userDateLocale();

} // namespace brimwatch
