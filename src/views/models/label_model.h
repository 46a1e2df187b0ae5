#pragma once

#include "model/label_composition.h"

#include <QColor>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QString>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

namespace brimwatch::service {
class QuotaService;
}

namespace brimwatch::views {

class Theme;

/// One item of MenuBarLabelView, its colour resolved.
struct LabelItem {
    Q_GADGET
    QML_VALUE_TYPE(labelItem)
    Q_PROPERTY(QString symbolName MEMBER symbolName CONSTANT FINAL)
    Q_PROPERTY(QString text MEMBER text CONSTANT FINAL)
    Q_PROPERTY(QColor color MEMBER color CONSTANT FINAL)

public:
    QString symbolName = {}; ///< Empty if the text names the model.
    QString text = {};
    QColor color = {};

    bool operator==(const LabelItem &) const = default;
};

/// What MenuBarLabelView shows: an optional sparkle, then the items. It follows the service that it
/// is given.
class LabelModel : public QObject, public QQmlParserStatus {
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    Q_PROPERTY(brimwatch::service::QuotaService *quotaService READ quotaService WRITE
            setQuotaService NOTIFY quotaServiceChanged REQUIRED FINAL)
    Q_PROPERTY(bool showIcon READ showIcon NOTIFY changed FINAL)
    Q_PROPERTY(QColor iconColor READ iconColor NOTIFY changed FINAL)
    Q_PROPERTY(QVariantList items READ items NOTIFY changed FINAL)

public:
    using QObject::QObject;

    service::QuotaService *quotaService() const { return m_service; }
    void setQuotaService(service::QuotaService *service);

    bool showIcon() const { return m_composition.showIcon; }
    QColor iconColor() const;
    /// Each a LabelItem.
    QVariantList items() const;

    void classBegin() override { }
    void componentComplete() override;

Q_SIGNALS:
    void quotaServiceChanged();
    void changed();

private:
    void read();

    Theme *m_theme = nullptr;
    QPointer<service::QuotaService> m_service;
    model::LabelViewComposition m_composition;
};

} // namespace brimwatch::views
