#include "core/ConnectionFailure.h"

namespace tavren {

QString ConnectionFailure::knownMessage(QAbstractSocket::SocketError error, bool duringConnect) {
    switch (error) {
        case QAbstractSocket::ConnectionRefusedError:
            return QStringLiteral("Server is Offline. Please try again later..");
        case QAbstractSocket::SocketTimeoutError:
        case QAbstractSocket::NetworkError:
            return QStringLiteral("Server could not be reached, please try again later..");
        case QAbstractSocket::RemoteHostClosedError:
            return duringConnect ? QStringLiteral("Connection Abort, Please try again...")
                                 : QString();
        case QAbstractSocket::UnsupportedSocketOperationError:
        case QAbstractSocket::SocketAddressNotAvailableError:
            return QStringLiteral("Invalid Server/Proxy address please check...");
        case QAbstractSocket::HostNotFoundError:
            return QStringLiteral(
                "No Server was found at this address. Please try alternative server..");
        default:
            return QString();
    }
}

QString ConnectionFailure::detail(const QString& description, const QString& host, quint16 port) {
    return description + QStringLiteral("\r\nHost: ") + host + QStringLiteral("\r\nPort: ") +
           QString::number(port);
}

}  // namespace tavren
