#include "core/date_styles.h"

#include <QLocale>

#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/locid.h>
#include <unicode/simpleformatter.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>

#include <array>
#include <utility>

namespace brimwatch {

using namespace Qt::Literals::StringLiterals;

namespace {

icu::Locale gregorianLocale(const QString &name)
{
    // ICU 72 crashes when it is asked for the patterns of a name that it could not make sense of.
    auto locale = icu::Locale::createFromName(name.toUtf8().constData());
    if (locale.isBogus() != 0)
        locale = icu::Locale::getUS();
    // The daemon's dates are Gregorian, and so are the days that countdowns and "today" count in: a
    // Thai or Persian locale shows the same year as everyone else's.
    UErrorCode status = U_ZERO_ERROR;
    locale.setKeywordValue("calendar", "gregorian", status);
    return U_SUCCESS(status) != 0 && locale.isBogus() == 0 ? locale : icu::Locale::getUS();
}

QString toQString(const icu::UnicodeString &text)
{
    return QString::fromUtf16(text.getBuffer(), text.length());
}

} // namespace

struct DateStyles::Formats {
    explicit Formats(const QString &localeName)
        : locale(gregorianLocale(localeName))
    {
    }

    icu::Locale locale;
    bool made = false;
    // Null where ICU has no data at all.
    std::unique_ptr<icu::SimpleDateFormat> timeShortened;
    std::unique_ptr<icu::SimpleDateFormat> dateTimeShortened;
    std::unique_ptr<icu::SimpleDateFormat> dateTimeStandard;

    /// The pattern generator is the dear part (about 1 ms, the formats 0.05 ms each), so it makes
    /// all formats at once and goes.
    void make()
    {
        made = true;
        UErrorCode status = U_ZERO_ERROR;
        const std::unique_ptr<icu::DateTimePatternGenerator> generator(
            icu::DateTimePatternGenerator::createInstance(locale, status));
        if (U_FAILURE(status) != 0)
            return;
        const auto date = generator->getBestPattern(u"yMMMd", status);
        // By "j" hours are counted as the locale counts them, to 12 or to 24.
        const auto time = generator->getBestPattern(u"jm", status);
        const auto timeWithSeconds = generator->getBestPattern(u"jms", status);
        // The medium form has a comma where the long one says "at".
        const icu::SimpleFormatter join(
            generator->getDateTimeFormat(UDAT_LONG, status), 2, 2, status);
        const auto joined = [&](const icu::UnicodeString &timePattern) {
            icu::UnicodeString pattern;
            join.format(timePattern, date, pattern, status);
            return pattern;
        };
        const std::array patterns{time, joined(time), joined(timeWithSeconds)};
        std::array formats{&timeShortened, &dateTimeShortened, &dateTimeStandard};
        for (std::size_t i = 0; i < patterns.size(); ++i) {
            auto format = std::make_unique<icu::SimpleDateFormat>(patterns.at(i), locale, status);
            if (U_FAILURE(status) != 0)
                return;
            *formats.at(i) = std::move(format);
        }
    }

    QString write(const std::unique_ptr<icu::SimpleDateFormat> &format, const QDateTime &date)
    {
        if (!date.isValid())
            return {};
        if (!made)
            make();
        if (!format)
            return date.toString(Qt::ISODate);
        // Of the zone only the offset at that moment matters, and Qt knows it: no zone name has to
        // mean the same to both libraries.
        const icu::SimpleTimeZone zone(date.offsetFromUtc() * 1000, u"offset");
        UErrorCode status = U_ZERO_ERROR;
        icu::GregorianCalendar calendar(zone, locale, status);
        calendar.setTime(static_cast<UDate>(date.toMSecsSinceEpoch()), status);
        icu::UnicodeString text;
        icu::FieldPosition ignored;
        format->format(calendar, text, ignored);
        return toQString(text).replace(QChar(0x202f), u' ');
    }
};

DateStyles::DateStyles(const QString &locale)
    : m_formats(std::make_unique<Formats>(locale))
{
}

DateStyles::~DateStyles() = default;

const DateStyles &DateStyles::user()
{
    static const DateStyles styles(userDateLocale());
    return styles;
}

QString DateStyles::timeShortened(const QDateTime &date) const
{
    return m_formats->write(m_formats->timeShortened, date);
}

QString DateStyles::dateAbbreviatedTimeShortened(const QDateTime &date) const
{
    return m_formats->write(m_formats->dateTimeShortened, date);
}

QString DateStyles::dateAbbreviatedTimeStandard(const QDateTime &date) const
{
    return m_formats->write(m_formats->dateTimeStandard, date);
}

namespace {

/// The script that a modifier of a locale's name asks for, as ICU names it; empty for others.
QString scriptOf(const QString &modifier)
{
    if (modifier == "latin"_L1 || modifier == "iqtelif"_L1)
        return u"Latn"_s;
    if (modifier == "cyrillic"_L1)
        return u"Cyrl"_s;
    return modifier == "devanagari"_L1 ? u"Deva"_s : QString();
}

} // namespace

QString userDateLocale()
{
    QString english = u"en_US"_s;
    for (const char *variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        QString name = qEnvironmentVariable(variable);
        if (name.isEmpty())
            continue;
        const QString script = scriptOf(name.section(u'@', 1));
        name = name.section(u'@', 0, 0).section(u'.', 0, 0);
        if (name.isEmpty() || name == "C"_L1 || name == "POSIX"_L1)
            return english;
        // ICU wants the script after the language: "sr_Latn_RS".
        if (!script.isEmpty())
            name.insert(name.section(u'_', 0, 0).size(), u'_' + script);
        return name;
    }
    // Programs of macOS are started without these variables.
    const QString name = QLocale::system().name();
    return name == "C"_L1 ? english : name;
}

} // namespace brimwatch
