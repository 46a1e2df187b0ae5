#pragma once

#include "service/diagnostics.h"
#include "service/quota_service.h"

#include <QAbstractItemModel>
#include <QtQml/qqml.h>

namespace brimwatch::views {

// Types of other folders, which know nothing of QML.

struct ForeignQuotaService {
    Q_GADGET
    QML_FOREIGN(brimwatch::service::QuotaService)
    QML_NAMED_ELEMENT(QuotaService)
    QML_UNCREATABLE("The program makes the one there is.")
};

struct ForeignDiagnosticLine {
    Q_GADGET
    QML_FOREIGN(brimwatch::service::DiagnosticLine)
    QML_VALUE_TYPE(diagnosticLine)
};

/// The base of our lists of cards and rows, for the QML tools.
struct ForeignItemModel {
    Q_GADGET
    QML_FOREIGN(QAbstractItemModel)
    QML_ANONYMOUS
};

} // namespace brimwatch::views
