#pragma once

#include <QAbstractSocket>
#include <QObject>
#include <QString>
#include <QTimer>

#include "core/ConnectTarget.h"
#include "core/ConnectedClock.h"
#include "core/ConnectionOptions.h"
#include "core/ErrorLog.h"
#include "core/PingWatchdog.h"
#include "core/ServerTrust.h"

namespace tavren {

class Prompter;
class ServerLink;
class Settings;

// Opens the link to the server (directly or through an HTTP proxy tunnel), tells the user in
// plain words when that fails, watches the link with the ping watchdog and brings the client
// back to the offline state when the link ends. What is said over the link once it is up
// belongs to the login flow, which waits for linkReady().
class ServerConnection : public QObject {
    Q_OBJECT
  public:
    enum class Phase { Closed, Connecting, Tunnelling, Up };

    ServerConnection(Settings& settings, Prompter& prompter, ErrorLog& errorLog, ServerLink& link,
                     const ConnectionOptions& options, QObject* parent = nullptr);

    // Validates the settings and starts connecting. A setting that cannot work is reported in
    // a message box and nothing touches the network; returns false then.
    bool ConnectToServer();
    // The one way back to the logged-out state: closes the link, stops the clock and the
    // watchdog and announces wentOffline(). Does nothing when already offline.
    void GoOffline(bool remote);
    // The watchdog gave up: offline once, with the time-out line for the user.
    void PingTimedOut();
    // The dispatcher answered a ping; the link is alive.
    void pingArrived() { watchdog_.pingArrived(); }
    // Every frame from the server passes here first. The server announces every close it
    // decides on (log-in elsewhere, time-out, flooding, old client) with a notice as its last
    // frame; a close right after one is on purpose and is not answered by reconnecting.
    void noteServerFrame(bool isNotice) { lastFrameWasNotice_ = isNotice; }

    Phase phase() const { return phase_; }
    bool linkUp() const { return phase_ == Phase::Up; }
    const ConnectTarget& target() const { return target_; }

    // The first of the two flags that make connection errors quiet: set once a login has been
    // accepted, so that losing an established session is reported in the error window while
    // the auto-reconnect countdown retries. The second is Settings::autoReconnectArmed().
    bool loggedInBefore() const { return loggedInBefore_; }
    // Forgetting the earlier login (the member logged off) also forgets that a lost session was
    // being brought back.
    void setLoggedInBefore(bool on) {
        loggedInBefore_ = on;
        if (!on) {
            recovering_ = false;
        }
    }
    // The server accepted a login: errors become quiet from now on, and when this login brings
    // back a session that was lost, the error window and the panes are told so.
    void loginAccepted();
    bool quietErrors() const;
    // Whether a lost link will be re-established by the countdown.
    bool autoReloginEnabled() const;
    // What went wrong with the last connect, in the user's words; empty while connecting, once
    // logged in, and before any try.
    QString lastProblem() const { return lastProblem_; }

    // While the link is up: whether it is encrypted, and a few lines saying how (protocol and
    // the certificate's fingerprint) or that it is not.
    bool encrypted() const;
    QString encryptionDetails() const;

    ConnectedClock& clock() { return clock_; }
    PingWatchdog& watchdog() { return watchdog_; }

  signals:
    // Connected straight to the server, or the proxy's tunnel is up: the client may speak.
    void linkReady();
    // A connect attempt failed and the user has been told; the login button resets.
    void connectFailed();
    // The client went offline (remote: the server closed the link).
    void wentOffline(bool remote);
    // A line for every open conversation pane, already prefixed with "Server: ".
    void statusLine(const QString& line);
    // The link came up or went down: encrypted() and encryptionDetails() may read otherwise.
    void encryptionChanged();

  private:
    void onConnected();
    void onReady();
    void onLinkFailed(QAbstractSocket::SocketError error, const QString& description);
    void onRemoteClosed();
    void onStreamRefused(const QString& text);
    void reportFailure(QAbstractSocket::SocketError error, const QString& description);
    // Tells the user why the attempt failed (`known`: in a box unless errors are quiet; else
    // `detail` in the error window) and ends it.
    void reportProblem(const QString& known, const QString& detail);
    void onEncryptionFailed(const QString& reason);
    // The certificate judge, asked while the handshake waits.
    bool judgeCertificate(const QSslCertificate& certificate, const QList<QSslError>& errors);
    void onCertificateRefused(const QSslCertificate& certificate, const QList<QSslError>& errors);
    // The attempt waits for the member's word on a certificate; yes connects again.
    void askAboutCertificate(const ServerTrust::Check& check);
    // The host and port a certificate must be for: the server's, also through the tunnel.
    QString serverName() const;
    quint16 serverPort() const;
    void tellOffline(const QString& text);
    // While the countdown is bringing a lost session back, the error window is written to
    // without coming forward.
    ErrorLog::Show errorWindowShow() const;
    // Stops the connect timer, the connected-time clock and the watchdog; the link is down.
    void enterClosed();

    Settings& settings_;
    Prompter& prompter_;
    ErrorLog& errorLog_;
    ServerLink& link_;
    ConnectionOptions options_;
    ConnectTarget target_;
    Phase phase_ = Phase::Closed;
    bool loggedInBefore_ = false;
    bool lastFrameWasNotice_ = false;
    // A logged-in session was lost and the countdown is bringing it back.
    bool recovering_ = false;
    ServerTrust trust_;
    // Counts connects and disconnects, so that an answer about a certificate that comes after
    // the member cancelled (or after another attempt began) changes nothing.
    quint64 attempt_ = 0;
    QString questionOpenFor_;  // the fingerprint a certificate question is open for
    QString lastProblem_;
    QTimer connectTimer_;
    ConnectedClock clock_;
    PingWatchdog watchdog_;
};

}  // namespace tavren
