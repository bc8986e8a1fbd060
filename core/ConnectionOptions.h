#pragma once

#include <QString>
#include <QStringList>

namespace tavren {

// The connection's fixed endpoints and intervals. The defaults are the deployment's (set at
// build time) and the intervals a person expects; tests shorten the intervals and point the
// proxy tunnel at their own server.
struct ConnectionOptions {
    // Hosts behind "{default server #1}" .. "{default server #4}" and the port behind
    // "{default port}".
    QStringList defaultServers;
    quint16 defaultPort = 5678;
    // Through a proxy the client always asks for this endpoint, whatever server it was given.
    QString tunnelHost;
    quint16 tunnelPort = 5678;

    // The ping watchdog (TimerPinged) gives up after five of these without a ping. The server
    // pings every five seconds, so one ping in each interval is normal.
    int watchdogIntervalMs = 6000;
    // A connect that has not completed by then counts as "could not be reached".
    int connectTimeoutMs = 30000;
    // The login window's auto-reconnect countdown (Timer3): its length in ticks and one tick.
    int reconnectCountdown = 10;
    int countdownTickMs = 1000;
    // How often the login window refreshes its connection status line (Timer2).
    int statusRefreshMs = 500;

    // The deployment's endpoints with the intervals above.
    static ConnectionOptions deployment();
};

}  // namespace tavren
