#include "cli/output/pango.h"

#include <QStringList>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

QString colorOf(model::QuotaTier tier)
{
    switch (tier) {
    case model::QuotaTier::healthy:
        return u"#33d473"_s;
    case model::QuotaTier::warning:
        return u"#ff9f2e"_s;
    case model::QuotaTier::critical:
        break;
    }
    return u"#ff655b"_s;
}

QString pangoColored(const QString &text, const QString &color)
{
    return u"<span color=\"%1\">%2</span>"_s.arg(color, text.toHtmlEscaped());
}

QString pangoTitle(const Status &status)
{
    const auto &state = status.state;
    if (!status.isOnline() || state.items.isEmpty())
        return pangoColored(state.title.isEmpty() ? u"✦ –"_s : state.title, noColor);
    QStringList items;
    for (const auto &item : state.items)
        items.append(pangoColored(item.text, colorOf(item.tier)));
    return (state.title.startsWith(u'✦') ? u"✦ "_s : QString()) + items.join(u" · "_s);
}

} // namespace brimwatch::cli
