#include "model/family_names.h"

#include <QTextBoundaryFinder>

namespace brimwatch::model {
namespace {

bool containsWholeCharacters(
    const QString &name, const QString &part, Qt::CaseSensitivity sensitivity)
{
    auto at = name.indexOf(part, 0, sensitivity);
    if (at < 0)
        return false;
    // It looks at the whole name when it is made, so there is one for all the places.
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, name);
    for (; at >= 0; at = name.indexOf(part, at + 1, sensitivity)) {
        finder.setPosition(at);
        if (!finder.isAtBoundary())
            continue;
        finder.setPosition(at + part.size());
        if (finder.isAtBoundary())
            return true;
    }
    return false;
}

} // namespace

bool containsIgnoringCase(const QString &name, const QString &part)
{
    return containsWholeCharacters(name, part, Qt::CaseInsensitive);
}

bool lowerCasedContains(const QString &name, const QString &part)
{
    return containsWholeCharacters(name.toLower(), part, Qt::CaseSensitive);
}

} // namespace brimwatch::model
