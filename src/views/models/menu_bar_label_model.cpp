#include "views/models/menu_bar_label_model.h"

#include "service/quota_service.h"
#include "views/models/theme.h"

namespace brimwatch::views {

MenuBarLabelModel::MenuBarLabelModel(QObject *parent)
    : QObject(parent)
{
}

MenuBarLabelModel::~MenuBarLabelModel() = default;

void MenuBarLabelModel::setQuotaService(service::QuotaService *service)
{
    if (m_service == service)
        return;
    if (m_service != nullptr)
        m_service->disconnect(this);
    m_service = service;
    if (m_service != nullptr) {
        // The announcement comes before the change, so the new values are read a turn of the event
        // loop later.
        connect(m_service, &service::QuotaService::objectWillChange, this, &MenuBarLabelModel::read,
            Qt::QueuedConnection);
    }
    read();
    Q_EMIT quotaServiceChanged();
}

QColor MenuBarLabelModel::iconColor() const
{
    return m_theme != nullptr ? m_theme->color(m_composition.iconColor) : QColor();
}

QVariantList MenuBarLabelModel::items() const
{
    QVariantList items;
    items.reserve(m_composition.items.size());
    for (const model::LabelViewItem &item : m_composition.items) {
        items.append(QVariant::fromValue(MenuBarLabelItem{.symbolName = item.symbolName,
            .text = item.text,
            .color = m_theme != nullptr ? m_theme->color(item.color) : QColor()}));
    }
    return items;
}

void MenuBarLabelModel::componentComplete()
{
    m_theme = Theme::of(this);
    if (m_theme == nullptr)
        return;
    connect(m_theme, &Theme::changed, this, &MenuBarLabelModel::changed);
    Q_EMIT changed();
}

void MenuBarLabelModel::read()
{
    const model::LabelViewComposition composition = m_service != nullptr
        ? model::composeLabelView(m_service->labelInput())
        : model::LabelViewComposition{};
    if (m_composition == composition)
        return;
    m_composition = composition;
    Q_EMIT changed();
}

} // namespace brimwatch::views
