#include "platform/macos/mac_status_item.h"

#include "platform/macos/mac_label.h"

namespace brimwatch::platform {

MacStatusItem::MacStatusItem(QObject *parent)
    : StatusItem(parent)
    , m_native([this] { Q_EMIT clicked({}); })
{
}

bool MacStatusItem::hasButton() const
{
    return m_native.hasButton();
}

void MacStatusItem::setLabel(const model::LabelComposition &label)
{
    if (m_label == label)
        return;
    m_label = label;
    m_native.setLabel(nativeLabel(label));
}

void MacStatusItem::setDescription(const ItemDescription &description)
{
    if (m_description == description)
        return;
    m_description = description;
    m_native.setToolTip(description.lines.join(u'\n').toStdString());
    m_native.setAccessibilityLabel(description.title.toStdString());
}

void *MacStatusItem::button() const
{
    return m_native.button();
}

} // namespace brimwatch::platform
