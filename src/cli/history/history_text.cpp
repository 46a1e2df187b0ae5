#include "cli/history/forms.h"
#include "cli/history/words.h"
#include "cli/output/columns.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;
using std::chrono::seconds;
using std::chrono::sys_seconds;

namespace {

constexpr int hoursOfDay = 24;
constexpr auto indent = "  "_L1;

model::QuotaTier tierOf(double used)
{
    model::QuotaBucket bucket;
    bucket.remainingFraction = 1 - used;
    return bucket.statusTier();
}

/// A picture of points: in braille a character has two beside and four above each other, in ASCII
/// one.
class Canvas {
public:
    Canvas(int columns, int rows, TextLook::Bars bars)
        : m_isBraille(bars == TextLook::Bars::Blocks)
        , m_columns(columns)
        , m_lines(static_cast<std::size_t>(rows), QString(columns, m_isBraille ? u'\u2800' : u' '))
    {
    }

    int width() const { return m_isBraille ? 2 * m_columns : m_columns; }
    int height() const { return (m_isBraille ? 4 : 1) * static_cast<int>(m_lines.size()); }

    /// From the left and from the bottom; `mark` is what ASCII shows.
    void set(int x, int y, QChar mark)
    {
        if (!m_isBraille) {
            line(y)[x] = mark;
            return;
        }
        constexpr std::array<std::array<int, 4>, 2> bits{
            {{0x40, 0x04, 0x02, 0x01}, {0x80, 0x20, 0x10, 0x08}}};
        const int bit
            = bits.at(static_cast<std::size_t>(x % 2)).at(static_cast<std::size_t>(y % 4));
        auto &text = line(y / 4);
        text[x / 2] = QChar(static_cast<char16_t>(text.at(x / 2).unicode() | bit));
    }

    const std::vector<QString> &lines() const { return m_lines; }

private:
    QString &line(int fromBottom)
    {
        return m_lines.at(m_lines.size() - 1 - static_cast<std::size_t>(fromBottom));
    }

    bool m_isBraille;
    int m_columns;
    std::vector<QString> m_lines;
};

/// What was used until now, and dots for even use up to the reset.
QString courseOf(const WindowUsage &window, const QDateTime &now, const TextLook &look)
{
    constexpr int rows = 6;
    constexpr int widest = 60;
    constexpr int axis = 6; // "100% "
    const int columns = std::clamp(look.width - 2 - axis, 8, widest);
    Canvas canvas(columns, rows, look.bars);
    const auto rowOf = [&canvas](double share) {
        return std::clamp(static_cast<int>(share * canvas.height()), 0, canvas.height() - 1);
    };
    const sys_seconds until(seconds(now.toSecsSinceEpoch()));
    const std::chrono::duration<double> length = window.reset - window.start;
    std::optional<int> last;
    for (int x = 0; x < canvas.width(); ++x) {
        const double gone = (x + 0.5) / canvas.width();
        if (x % 2 == 0)
            canvas.set(x, rowOf(gone), u'.');
        const auto time = window.start + std::chrono::round<seconds>(length * gone);
        if (time > until)
            continue;
        const int y = rowOf(usedAt(window, time));
        for (int between = std::min(last.value_or(y) + 1, y); between <= y; ++between)
            canvas.set(x, between, u'*');
        last = y;
    }
    QString text;
    const QString before = look.colors ? escapeOf(tierOf(window.peak)) : QString();
    const QString after = look.colors ? QString(escapeEnd) : QString();
    for (std::size_t i = 0; i < canvas.lines().size(); ++i) {
        auto label = "     "_L1;
        if (i == 0)
            label = "100% "_L1;
        else if (i + 1 == canvas.lines().size())
            label = "  0% "_L1;
        text += indent + label + before + canvas.lines()[i] + after + u'\n';
    }
    const QString start = momentText(window.start, now);
    const QString reset = momentText(window.reset, now);
    const int room = columns - columnsOf(start) - columnsOf(reset);
    if (room > 1)
        text += indent + QString(5, u' ') + start + QString(room, u' ') + reset + u'\n';
    return text;
}

/// A line for each day from Monday on, a character for each hour, or for more where the terminal is
/// narrow.
QString hoursOf(const BucketUsage &usage, const TextLook &look)
{
    static constexpr std::array<char16_t, 5> blocks{u'·', u'░', u'▒', u'▓', u'█'};
    static constexpr std::array<char16_t, 5> ascii{u'.', u':', u'+', u'*', u'#'};
    const auto &shades = look.bars == TextLook::Bars::Blocks ? blocks : ascii;
    constexpr int names = 8; // "    Mon "
    const int hoursEach = look.width >= names + hoursOfDay ? 1 : 2;
    std::array<std::array<double, hoursOfDay>, 7> cells{};
    double most = 0;
    for (std::size_t day = 0; day < cells.size(); ++day) {
        for (int hour = 0; hour < hoursOfDay; ++hour) {
            double &cell = cells.at(day).at(static_cast<std::size_t>(hour / hoursEach));
            cell += usage.hours.at(hourIndex(static_cast<int>(day) + 1, hour));
            most = std::max(most, cell);
        }
    }
    if (most <= 0)
        return {};
    QString ruler;
    for (int hour = 0; hour < hoursOfDay; hour += 6)
        ruler += padded(QString::number(hour), 6 / hoursEach);
    QString text = indent + padded(u"Hours"_s, names - 2) + ruler.trimmed() + u'\n';
    for (std::size_t day = 0; day < cells.size(); ++day) {
        text += indent
            + padded(
                QLocale(QLocale::English).dayName(static_cast<int>(day) + 1, QLocale::ShortFormat),
                names - 2);
        for (int i = 0; i < hoursOfDay / hoursEach; ++i) {
            const double use = cells.at(day).at(static_cast<std::size_t>(i));
            const auto shade = use <= 0.02 * most ? 0 : 1 + static_cast<int>(use / most * 3.999);
            text += QChar(shades.at(static_cast<std::size_t>(shade)));
        }
        text += u'\n';
    }
    return text;
}

QString windowLine(
    const WindowUsage &window, const QDateTime &now, const TextLook &look, int dateColumns)
{
    constexpr int gap = 2;
    constexpr int percentColumns = 4;
    constexpr int leastBar = 8;
    constexpr int mostBar = 20;
    const QString before = look.colors ? escapeOf(tierOf(window.peak)) : QString();
    const QString after = look.colors ? QString(escapeEnd) : QString();
    const QString percent = before + percentOf(window.peak).rightJustified(percentColumns) + after;
    const QString date = momentText(window.start, now);
    QString line = indent + "  "_L1;
    const QString ranOut = ranOutWords(window);
    if (look.bars == TextLook::Bars::None)
        return line + padded(date, dateColumns) + "  "_L1 + percent
            + (ranOut.isEmpty() ? QString() : QString("  "_L1 + ranOut)) + u'\n';
    // Dates are cut last; the words of when it ran out give way first, then the bar.
    int room = look.width - 4 - gap - percentColumns;
    const int dates = std::clamp(dateColumns, 1, std::max(1, room));
    room -= dates;
    line += padded(fitted(date, dates), dates);
    if (room >= gap + leastBar) {
        constexpr int widestWords = 34; // "  ran out 6d 23h before the reset"
        const int columns = std::clamp(room - gap - widestWords, leastBar, mostBar);
        line += "  "_L1 + before + barOf(window.peak * 100, columns, look.bars) + after;
        room -= gap + columns;
    }
    line += "  "_L1 + percent;
    room -= gap;
    if (!ranOut.isEmpty() && columnsOf(ranOut) <= room)
        line += "  "_L1 + ranOut;
    else if (!ranOut.isEmpty() && room >= 7)
        line += "  ran out"_L1;
    return line + u'\n';
}

QString textOf(const BucketUsage &usage, const QDateTime &now, const TextLook &look)
{
    const bool hasPictures = look.bars != TextLook::Bars::None;
    QString name = nameOf(usage);
    const QString window = windowName(usage);
    if (!window.isEmpty())
        name += " ("_L1 + window + u')';
    if (hasPictures)
        name = fitted(name, look.width);
    QString text = (look.colors ? escapeBold + name + escapeEnd : name) + u'\n';
    if (usage.window.isEmpty())
        return text + "  Its window is not known\n"_L1;
    if (usage.windows.isEmpty())
        return text + "  Nothing was used\n"_L1;
    auto windows = usage.windows;
    if (usage.isUnderWay) {
        const auto current = windows.takeLast();
        QString words = courseWords(current, now);
        while (hasPictures && columnsOf(words) + 2 > look.width && words.contains(u','))
            words = words.section(u',', 0, -2);
        text += indent + words + u'\n';
        if (hasPictures)
            text += courseOf(current, now, look);
    }
    if (!windows.isEmpty())
        text += "  Windows before\n"_L1;
    int dateColumns = 0;
    for (const auto &each : windows)
        dateColumns = std::max(dateColumns, columnsOf(momentText(each.start, now)));
    std::reverse(windows.begin(), windows.end());
    for (const auto &each : std::as_const(windows))
        text += windowLine(each, now, look, dateColumns);
    if (hasPictures)
        text += hoursOf(usage, look);
    return text;
}

} // namespace

QString renderHistory(const QList<BucketUsage> &usages, const QDateTime &now, const TextLook &look)
{
    if (usages.isEmpty())
        return u"No history yet\n"_s;
    QStringList texts;
    for (const auto &usage : usages)
        texts.append(textOf(usage, now, look));
    return texts.join(u'\n');
}

} // namespace brimwatch::cli
