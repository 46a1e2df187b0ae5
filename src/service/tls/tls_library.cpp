#include "service/tls/tls_library.h"

#include "service/tls/secure_connection.h"

brimwatch::service::Connection *brimwatch_connect_securely(quint16 port, const QByteArray &request,
    const QByteArray &authorities, brimwatch::service::ConnectionListener &listener)
{
    return new brimwatch::service::SecureConnection(port, request, authorities, listener);
}
