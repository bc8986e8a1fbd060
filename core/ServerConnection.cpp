#include "core/ServerConnection.h"

#include <utility>

#include "config/Settings.h"
#include "core/ConnectionFailure.h"
#include "core/ErrorLog.h"
#include "core/Prompter.h"
#include "core/ServerLink.h"

namespace tavren {

namespace {
const QString kMessageTitle = QStringLiteral("Tavren Connection");
const QString kErrorTitle = QStringLiteral("Connection");
const QString kServerPrefix = QStringLiteral("Server: ");
const QString kReconnectedLine = QStringLiteral("Reconnected, you are back online.");
}  // namespace

ServerConnection::ServerConnection(Settings& settings, Prompter& prompter, ErrorLog& errorLog,
                                   ServerLink& link, const ConnectionOptions& options,
                                   QObject* parent)
    : QObject(parent),
      settings_(settings),
      prompter_(prompter),
      errorLog_(errorLog),
      link_(link),
      options_(options),
      watchdog_(options.watchdogIntervalMs) {
    connectTimer_.setSingleShot(true);
    connectTimer_.setInterval(options.connectTimeoutMs);
    connect(&connectTimer_, &QTimer::timeout, this, [this] {
        link_.close();
        reportFailure(QAbstractSocket::SocketTimeoutError, QStringLiteral("Connection timed out"));
    });
    connect(&link_, &ServerLink::connected, this, &ServerConnection::onConnected);
    connect(&link_, &ServerLink::tunnelUp, this, &ServerConnection::onReady);
    connect(&link_, &ServerLink::failed, this, &ServerConnection::onLinkFailed);
    connect(&link_, &ServerLink::remoteClosed, this, &ServerConnection::onRemoteClosed);
    connect(&link_, &ServerLink::streamRefused, this, &ServerConnection::onStreamRefused);
    connect(&watchdog_, &PingWatchdog::timedOut, this, &ServerConnection::PingTimedOut);
}

bool ServerConnection::quietErrors() const {
    return loggedInBefore_ && settings_.autoReconnectArmed();
}

bool ServerConnection::autoReloginEnabled() const {
    return quietErrors() && settings_.values().autoReconnect;
}

bool ServerConnection::ConnectToServer() {
    link_.close();
    connectTimer_.stop();
    watchdog_.stop();
    target_ = ConnectTarget::fromSettings(settings_.values(), options_);
    lastProblem_ = target_.problem;
    if (!target_.valid()) {
        phase_ = Phase::Closed;
        prompter_.message(target_.problem, kMessageTitle, Prompter::Icon::Warning);
        return false;
    }
    phase_ = Phase::Connecting;
    lastFrameWasNotice_ = false;
    connectTimer_.start();
    link_.connectTo(target_.host, target_.port, target_.viaProxy);
    return true;
}

void ServerConnection::onConnected() {
    connectTimer_.stop();
    clock_.start();
    if (!target_.viaProxy) {
        onReady();
        return;
    }
    // The proxy answers with an HTTP status; the frame cutter consumes a "200" reply and then
    // reports the tunnel up, after which the bytes are the server's.
    phase_ = Phase::Tunnelling;
    link_.sendRaw(QByteArrayLiteral("CONNECT ") + options_.tunnelHost.toLatin1() + ':' +
                  QByteArray::number(options_.tunnelPort) + QByteArrayLiteral(" HTTP/1.0\n\n"));
}

void ServerConnection::onReady() {
    phase_ = Phase::Up;
    watchdog_.start();
    emit linkReady();
}

void ServerConnection::onLinkFailed(QAbstractSocket::SocketError error,
                                    const QString& description) {
    if (phase_ == Phase::Closed) {
        return;
    }
    reportFailure(error, description);
}

ErrorLog::Show ServerConnection::errorWindowShow() const {
    return autoReloginEnabled() ? ErrorLog::Show::Quietly : ErrorLog::Show::Forward;
}

void ServerConnection::loginAccepted() {
    loggedInBefore_ = true;
    lastProblem_.clear();
    if (std::exchange(recovering_, false)) {
        const QString line = kServerPrefix + kReconnectedLine;
        emit statusLine(line);
        // Below the lines that said the session was lost, wherever the member left the window.
        errorLog_.ShowErrorMessage(line, QString(), ErrorLog::Show::Quietly);
    }
}

void ServerConnection::enterClosed() {
    connectTimer_.stop();
    clock_.reset();
    watchdog_.stop();
    phase_ = Phase::Closed;
}

void ServerConnection::reportFailure(QAbstractSocket::SocketError error,
                                     const QString& description) {
    const bool duringConnect = phase_ != Phase::Up;
    const bool wasUp = phase_ == Phase::Up;
    enterClosed();
    const QString known = ConnectionFailure::knownMessage(error, duringConnect);
    lastProblem_ = known.isEmpty() ? description : known;
    if (wasUp) {
        recovering_ = autoReloginEnabled();
    }
    if (known.isEmpty()) {
        errorLog_.ShowErrorMessage(
            ConnectionFailure::detail(description, target_.host, target_.port), kErrorTitle,
            errorWindowShow());
    } else if (quietErrors()) {
        errorLog_.ShowErrorMessage(known, kErrorTitle, errorWindowShow());
    } else {
        prompter_.message(known, kMessageTitle, Prompter::Icon::Critical);
    }
    if (wasUp) {
        emit wentOffline(false);
    }
    emit connectFailed();
}

void ServerConnection::onRemoteClosed() {
    if (phase_ == Phase::Closed) {
        return;
    }
    if (phase_ != Phase::Up) {
        // Cut before the client could say anything: the proxy or the server gave up on us.
        reportFailure(QAbstractSocket::RemoteHostClosedError, QString());
        return;
    }
    if (lastFrameWasNotice_) {
        // The notice said why; coming straight back would only be sent away again (or, for a
        // login from another place, throw that other session out in turn).
        settings_.setAutoReconnectArmed(false);
    }
    GoOffline(true);
}

void ServerConnection::onStreamRefused(const QString& text) {
    if (phase_ == Phase::Closed) {
        return;
    }
    lastProblem_ = text;
    errorLog_.ShowErrorMessage(text, kErrorTitle);
    if (phase_ == Phase::Up) {
        GoOffline(false);
        return;
    }
    enterClosed();
    emit connectFailed();
}

void ServerConnection::GoOffline(bool remote) {
    if (phase_ == Phase::Closed) {
        return;
    }
    link_.close();
    enterClosed();
    if (remote) {
        tellOffline(autoReloginEnabled()
                        ? QStringLiteral(
                              "You have been disconnected from the server, Auto Relogin Enabled..")
                        : QStringLiteral("You have been disconnected from the server."));
    }
    emit wentOffline(remote);
}

void ServerConnection::PingTimedOut() {
    if (phase_ == Phase::Closed) {
        return;
    }
    link_.close();
    enterClosed();
    tellOffline(
        QStringLiteral("You have been timed out due to no ping requests, Auto Relogin Enabled.."));
    emit wentOffline(false);
}

void ServerConnection::tellOffline(const QString& text) {
    const QString line = kServerPrefix + text;
    recovering_ = autoReloginEnabled();
    emit statusLine(line);
    errorLog_.ShowErrorMessage(line, QStringLiteral("Disconnected"), errorWindowShow());
}

}  // namespace tavren
