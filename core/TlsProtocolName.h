#pragma once

#include <QSslSocket>
#include <QString>

namespace tavren {

// The protocol an encrypted socket speaks, as a member reads it ("TLS 1.3"); empty while the
// socket is not encrypted. Shared by the server link and the direct connections.
class TlsProtocolName {
  public:
    static QString of(const QSslSocket& socket) {
        if (!socket.isEncrypted()) {
            return QString();
        }
        switch (socket.sessionProtocol()) {
            case QSsl::TlsV1_3:
                return QStringLiteral("TLS 1.3");
            case QSsl::TlsV1_2:
                return QStringLiteral("TLS 1.2");
            default:
                return QStringLiteral("TLS");
        }
    }
};

}  // namespace tavren
