#pragma once

#include <QDateTime>
#include <QString>

#include <memory>

namespace brimwatch {

/// Formats dates and times for a locale, with ICU's data. The space before AM and PM is a plain
/// one, and date and time are joined as in the locale's long form ("Nov 16, 2026 at 4:59:24 AM").
///
/// A date is shown in its own time zone. Formats are made when they are first needed, and kept.
class DateStyles {
public:
    /// `locale` is a name such as "en_US" or "pt_BR". For one that it does not know ICU chooses the
    /// next best; a text that is no name counts as "en_US".
    explicit DateStyles(const QString &locale);
    ~DateStyles();
    Q_DISABLE_COPY_MOVE(DateStyles)

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

/// The locale for dates in the environment, without encoding and modifier ("de_DE.UTF-8@euro" gives
/// "de_DE"). "C", "POSIX" and an environment without a locale give "en_US".
QString userDateLocale();

} // namespace brimwatch
