#pragma once

#include "service/quota_service.h"

#include <QAbstractItemModel>
#include <QtQml/qqml.h>

namespace brimwatch::views {

/// Makes the service known to QML, which its own folder does not know.
struct ForeignQuotaService {
    Q_GADGET
    QML_FOREIGN(brimwatch::service::QuotaService)
    QML_NAMED_ELEMENT(QuotaService)
    QML_UNCREATABLE("The program makes the one there is.")
};

/// Tells the QML tools what our lists of cards and rows are.
struct ForeignItemModel {
    Q_GADGET
    QML_FOREIGN(QAbstractItemModel)
    QML_ANONYMOUS
};

} // namespace brimwatch::views
