#pragma once

#include <QAbstractSocket>
#include <QString>

namespace tavren {

// What the user reads when the connection fails, by kind of failure. The known kinds have a
// fixed sentence; for the rest the socket's own description is written to the error window
// with the endpoint that was tried.
class ConnectionFailure {
  public:
    // The fixed sentence, or an empty string when the kind has none. `duringConnect` tells a
    // connection cut while it was still being set up (an abort) from one the server closed.
    static QString knownMessage(QAbstractSocket::SocketError error, bool duringConnect);
    // The error-window text for the other kinds: description, "Host: ", "Port: ", one per line.
    static QString detail(const QString& description, const QString& host, quint16 port);
};

}  // namespace tavren
