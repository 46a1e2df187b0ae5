#include "cli/output/forms.h"
#include "cli/output/pango.h"
#include "model/percent.h"

#include <QStringList>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

QString renderI3blocks(const Status &status, Layout layout)
{
    QString title = pangoTitle(status);
    if (layout == Layout::OneLine)
        return title;
    const auto &lowest = status.state.lowest;
    const QString color = status.isOnline() && lowest ? colorOf(lowest->tier) : noColor();
    const QString percentage = lowest ? model::wholePercent(lowest->percentage) : u"–"_s;
    return QStringList{title, pangoColored(percentage, color), color}.join(u'\n');
}

} // namespace brimwatch::cli
