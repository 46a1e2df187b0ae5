#include "cli/output/pango.h"

#include "platform/linux/appearance/system_colors.h"

#include <QStringList>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

namespace {

/// On dark panels.
QString named(model::ColorToken token)
{
    const auto color = platform::systemColor(token, platform::Background::Dark);
    const auto byte = [](double component) { return qRound(component * 255); };
    return QString::asprintf("#%02x%02x%02x", byte(color.red), byte(color.green), byte(color.blue));
}

} // namespace

QString colorOf(model::QuotaTier tier)
{
    return named(model::labelColor(tier));
}

QString noColor()
{
    return named(model::ColorToken::SecondaryLabel);
}

QString pangoColored(const QString &text, const QString &color)
{
    return u"<span color=\"%1\">%2</span>"_s.arg(color, text.toHtmlEscaped());
}

QString pangoTitle(const Status &status)
{
    const auto &state = status.state;
    if (!status.isOnline() || state.items.isEmpty())
        return pangoColored(state.title.isEmpty() ? u"✦ –"_s : state.title, noColor());
    QStringList items;
    for (const auto &item : state.items)
        items.append(pangoColored(item.text, colorOf(item.tier)));
    return (state.title.startsWith(u'✦') ? u"✦ "_s : QString()) + items.join(u" · "_s);
}

} // namespace brimwatch::cli
