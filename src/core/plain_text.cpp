#include "core/plain_text.h"

#include <QTextBoundaryFinder>

namespace brimwatch {

namespace {

bool isBlank(QChar character)
{
    return character.isSpace() || character.category() == QChar::Other_Control;
}

} // namespace

QString truncated(const QString &text, qsizetype longest)
{
    if (text.size() <= longest)
        return text;
    if (longest <= 0)
        return {};
    // Whether a grapheme ends here depends on the text before and on the next code point, of two
    // units at most. The rest may be long.
    const QString read = text.left(longest + 2);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, read);
    finder.setPosition(longest);
    auto end = finder.isAtBoundary() ? longest : finder.toPreviousBoundary();
    if (end <= 0)
        end = longest;
    // After Burmese letters QTextBoundaryFinder of Qt 6.4 reports boundaries within surrogate
    // pairs.
    if (read[end - 1].isHighSurrogate() && read[end].isLowSurrogate())
        --end;
    return read.left(end);
}

QString asOneLine(const QString &text, qsizetype longest)
{
    QString line;
    for (const QChar character : text) {
        if (!isBlank(character)) {
            // Long enough to know that the text is truncated, and where.
            if (line.size() > longest + 2)
                break;
            line += character;
        } else if (!line.isEmpty() && line.back() != u' ') {
            line += u' ';
        }
    }
    if (line.endsWith(u' '))
        line.chop(1);
    if (line.size() <= longest)
        return line;
    return truncated(line, longest - 1) + u'…';
}

} // namespace brimwatch
