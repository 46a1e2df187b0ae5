#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>

namespace brimwatch::test {

/// The golden answers in the file of that name ("percent.json"), from tests/data/reference or, when
/// it is set, from the folder that BRIMWATCH_REFERENCE_DATA names. Ends the test program when the
/// file is missing, unreadable or empty.
QList<QJsonObject> referenceCases(const QString &fileName);

/// Whether every correct program answers so. The others were observed only: those must do no harm.
bool isRequired(const QJsonObject &referenceCase);

} // namespace brimwatch::test
