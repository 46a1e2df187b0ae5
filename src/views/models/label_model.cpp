#include "views/models/label_model.h"

#include "service/quota_service.h"
#include "views/models/assign.h"
#include "views/models/theme.h"

namespace brimwatch::views {

void LabelModel::setQuotaService(service::QuotaService *service)
{
    service::QuotaService *const before = m_service;
    if (!assign(m_service, service))
        return;
    if (before != nullptr)
        before->disconnect(this);
    if (m_service != nullptr)
        connect(m_service, &service::QuotaService::stateChanged, this, &LabelModel::read);
    read();
    Q_EMIT quotaServiceChanged();
}

QColor LabelModel::iconColor() const
{
    return m_theme != nullptr ? m_theme->color(m_composition.iconColor) : QColor();
}

QVariantList LabelModel::items() const
{
    QVariantList items;
    items.reserve(m_composition.items.size());
    for (const model::LabelViewItem &item : m_composition.items) {
        items.append(QVariant::fromValue(LabelItem{.symbolName = item.symbolName,
            .text = item.text,
            .color = m_theme != nullptr ? m_theme->color(item.color) : QColor()}));
    }
    return items;
}

void LabelModel::componentComplete()
{
    m_theme = Theme::of(this);
    if (m_theme == nullptr)
        return;
    connect(m_theme, &Theme::changed, this, &LabelModel::changed);
    Q_EMIT changed();
}

void LabelModel::read()
{
    if (assign(m_composition,
            m_service != nullptr ? model::composeLabelView(m_service->labelInput())
                                 : model::LabelViewComposition{}))
        Q_EMIT changed();
}

} // namespace brimwatch::views
