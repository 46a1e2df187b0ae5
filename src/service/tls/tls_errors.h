#pragma once

#include "service/transport_error_text.h"

#include <QAbstractSocket>
#include <QList>
#include <QSslError>
#include <QString>

namespace brimwatch::service {

/// What the error of a socket of Qt means.
TransportError transportErrorOf(QAbstractSocket::SocketError error);

/// Why a server's certificate is not accepted, in words for the user: the text of the first fault
/// that has one of its own.
QString certificateFaultText(const QList<QSslError> &faults);

} // namespace brimwatch::service
