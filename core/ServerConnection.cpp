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
      trust_(settings),
      watchdog_(options.watchdogIntervalMs) {
    connectTimer_.setSingleShot(true);
    connectTimer_.setInterval(options.connectTimeoutMs);
    connect(&connectTimer_, &QTimer::timeout, this, [this] {
        const bool handshaking = link_.handshaking();
        link_.close();
        if (handshaking) {
            onEncryptionFailed(tr("no answer to the encrypted handshake"));
            return;
        }
        reportFailure(QAbstractSocket::SocketTimeoutError, QStringLiteral("Connection timed out"));
    });
    link_.setCertificateJudge(
        [this](const QSslCertificate& certificate, const QList<QSslError>& errors) {
            return judgeCertificate(certificate, errors);
        });
    connect(&link_, &ServerLink::encryptionFailed, this, &ServerConnection::onEncryptionFailed);
    connect(&link_, &ServerLink::certificateRefused, this, &ServerConnection::onCertificateRefused);
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
    ++attempt_;
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
    link_.connectTo(target_.host, target_.port, target_.viaProxy,
                    settings_.values().tls ? serverName() : QString());
    return true;
}

QString ServerConnection::serverName() const {
    return target_.viaProxy ? options_.tunnelHost : target_.host;
}

quint16 ServerConnection::serverPort() const {
    return target_.viaProxy ? options_.tunnelPort : target_.port;
}

bool ServerConnection::encrypted() const {
    return phase_ == Phase::Up && link_.isEncrypted();
}

QString ServerConnection::encryptionDetails() const {
    if (phase_ != Phase::Up) {
        return QString();
    }
    if (!link_.isEncrypted()) {
        return tr(
            "Not encrypted: what you send can be read on the way to the server. Turn on "
            "\"Encrypted connection (TLS)\" in the settings to encrypt it.");
    }
    return tr("Encrypted (%1)\nServer certificate SHA-256:\n%2")
        .arg(link_.protocolName(), ServerTrust::fingerprintOf(link_.peerCertificate()));
}

bool ServerConnection::judgeCertificate(const QSslCertificate& certificate,
                                        const QList<QSslError>& errors) {
    const QString key = ServerTrust::keyFor(serverName(), serverPort());
    return trust_.check(key, certificate, errors).verdict == ServerTrust::Verdict::Trusted;
}

void ServerConnection::onEncryptionFailed(const QString& reason) {
    if (phase_ == Phase::Closed) {
        return;
    }
    const QString where = serverName() + QLatin1Char(':') + QString::number(serverPort());
    const QString text =
        tr("Could not make an encrypted connection to %1: %2.\n\nThe server may be an older one "
           "that does not offer encryption, or too busy to answer. To connect without "
           "encryption, turn off \"Encrypted connection (TLS)\" on the Server page of Tavren > "
           "Settings..")
            .arg(where, reason);
    reportProblem(text, text);
}

void ServerConnection::onCertificateRefused(const QSslCertificate& certificate,
                                            const QList<QSslError>& errors) {
    if (phase_ == Phase::Closed) {
        return;
    }
    const QString key = ServerTrust::keyFor(serverName(), serverPort());
    const ServerTrust::Check check = trust_.check(key, certificate, errors);
    if (check.verdict == ServerTrust::Verdict::Refused) {
        const QString text =
            tr("The certificate of %1 cannot be used: %2. Not connected.")
                .arg(serverName() + QLatin1Char(':') + QString::number(serverPort()),
                     check.reasons);
        reportProblem(text, text);
        return;
    }
    askAboutCertificate(check);
}

void ServerConnection::askAboutCertificate(const ServerTrust::Check& check) {
    const QString where = serverName() + QLatin1Char(':') + QString::number(serverPort());
    const QString key = ServerTrust::keyFor(serverName(), serverPort());
    enterClosed();
    lastProblem_ = tr("The server's certificate waits for your decision.");
    if (questionOpenFor_ == check.fingerprint) {
        // Asked already (an automatic reconnect came round again): one question is enough.
        emit connectFailed();
        return;
    }
    QString text;
    QString title;
    if (check.verdict == ServerTrust::Verdict::Changed) {
        title = tr("Server Certificate Changed!");
        text = tr("WARNING: the certificate of %1 is not the one you trusted before (%2).\n\n"
                  "Trusted SHA-256 fingerprint:\n%3\n\nNew SHA-256 fingerprint:\n%4\n\n"
                  "The operator may have replaced it, or somebody may be pretending to be the "
                  "server to read what you send, your password included. Trust the new "
                  "certificate only if the operator confirms its fingerprint. Trust it and "
                  "connect?")
                   .arg(where, check.reasons, check.known, check.fingerprint);
    } else {
        title = tr("Unknown Server Certificate");
        text = tr("The server %1 identifies itself with a certificate that no authority known to "
                  "this computer vouches for (%2).\n\nSHA-256 fingerprint:\n%3\n\nIf this is "
                  "the fingerprint the server's operator gives, the server is the one you mean. "
                  "Trust it from now on and connect?")
                   .arg(where, check.reasons, check.fingerprint);
    }
    questionOpenFor_ = check.fingerprint;
    const quint64 attempt = attempt_;
    prompter_.askYesNoLater(
        text, title,
        [this, attempt, key, fingerprint = check.fingerprint](Prompter::Answer answer) {
            questionOpenFor_.clear();
            if (attempt != attempt_ || phase_ != Phase::Closed) {
                return;  // cancelled, or another attempt is on its way
            }
            if (answer == Prompter::Answer::Yes) {
                trust_.remember(key, fingerprint);
                // Again from the event loop, not from inside the answer (which a prompter that
                // answers at once gives while the old socket is still reporting its end). The
                // login flow still waits for the link.
                QMetaObject::invokeMethod(
                    this,
                    [this, attempt] {
                        if (attempt == attempt_ && phase_ == Phase::Closed) {
                            ConnectToServer();
                        }
                    },
                    Qt::QueuedConnection);
                return;
            }
            lastProblem_ = tr("Not connected: the server's certificate was not trusted.");
            emit connectFailed();
        });
}

void ServerConnection::onConnected() {
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
    connectTimer_.stop();
    phase_ = Phase::Up;
    watchdog_.start();
    emit encryptionChanged();
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
    const bool wasUp = phase_ == Phase::Up;
    phase_ = Phase::Closed;
    if (wasUp) {
        emit encryptionChanged();
    }
}

void ServerConnection::reportProblem(const QString& known, const QString& detail) {
    const bool wasUp = phase_ == Phase::Up;
    enterClosed();
    lastProblem_ = known;
    if (wasUp) {
        recovering_ = autoReloginEnabled();
    }
    if (quietErrors()) {
        errorLog_.ShowErrorMessage(detail, kErrorTitle, errorWindowShow());
    } else {
        prompter_.message(known, kMessageTitle, Prompter::Icon::Critical);
    }
    if (wasUp) {
        emit wentOffline(false);
    }
    emit connectFailed();
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
    ++attempt_;  // a certificate question still open is answered for nothing
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
