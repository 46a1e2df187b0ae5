#include "cli/output/columns.h"

#include "core/plain_text.h"

#include <algorithm>
#include <cwchar>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;
using model::QuotaTier;

QString escapeOf(QuotaTier tier)
{
    switch (tier) {
    case QuotaTier::healthy:
        return u"\x1b[32m"_s;
    case QuotaTier::warning:
        return u"\x1b[33m"_s;
    case QuotaTier::critical:
        break;
    }
    return u"\x1b[31m"_s;
}

int columnsOf(const QString &text)
{
    int columns = 0;
    const auto codePoints = text.toUcs4();
    for (const uint codePoint : codePoints)
        columns += std::max(0, ::wcwidth(static_cast<wchar_t>(codePoint)));
    return columns;
}

QString padded(const QString &text, int columns)
{
    return text + QString(std::max(0, columns - columnsOf(text)), u' ');
}

QString fitted(const QString &text, int columns)
{
    if (columnsOf(text) <= columns)
        return text;
    QString beginning = text;
    while (!beginning.isEmpty() && columnsOf(beginning) >= columns)
        beginning = truncated(beginning, beginning.size() - 1);
    return beginning + u'…';
}

QString barOf(double percentage, int columns, TextLook::Bars bars)
{
    const int full = qRound(percentage / 100.0 * columns);
    const bool blocks = bars == TextLook::Bars::Blocks;
    return QString(full, blocks ? u'█' : u'#') + QString(columns - full, blocks ? u'░' : u'-');
}

} // namespace brimwatch::cli
