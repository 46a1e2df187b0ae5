#pragma once

#include <QList>
#include <QNetworkReply>
#include <QSslError>
#include <QString>

namespace brimwatch::service {

/// A transport error in words for the user, not as the library names it: "Could not connect to the
/// server."
QString transportErrorText(QNetworkReply::NetworkError error);

/// The same for a server whose certificate was found wanting. The first fault that has words of its
/// own counts.
QString certificateFaultText(const QList<QSslError> &faults);

} // namespace brimwatch::service
