#pragma once

#include "service/connection.h"

#include <QByteArray>

/// The only entry point of the library for TLS: makes a SecureConnection, which the caller owns.
/// What it is given is as there.
extern "C" Q_DECL_EXPORT brimwatch::service::Connection *brimwatch_connect_securely(quint16 port,
    const QByteArray &request, const QByteArray &authorities,
    brimwatch::service::ConnectionListener &listener);
