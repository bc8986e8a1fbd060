#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QObject>
#include <QString>
#include <QTimer>
#include <deque>
#include <memory>

#include "pm/PeerListener.h"
#include "pm/TransferProgress.h"

class QSslSocket;

namespace tavren {

class FileReceiver;
class FileSender;
class PeerCertificate;
class PeerTlsHandshake;
class Prompter;

// The direct connection of one private conversation: its handshake through the server, the
// socket to the other member, and the files going both ways over it.
//
// The link's state is what the conversation's link reads and does:
//
//   Connect    "- Connect to Send Files/Pictures.."   ask for a connection
//              ("- Connect to Share Files/Pictures.." once the other member has offered one)
//   Cancel     "- Cancel Direct Connection.."          withdraw the own request
//   Accept     "- Accept Direct Connection.."          take the other member's offer
//   Accepting  "- Connecting.."                        (nothing)
//   Close      "- Abort Direct Connection.."           end the connection
//
// Normally the member who asks listens on a port of the own range and the other connects to it.
// A member behind a firewall or a router (`tunnel`) cannot be connected to: such a member asks
// with port 0, and the member who accepts listens instead and names its port in the accept; the
// asker then connects out. A listening side takes only a connection from the address the server
// relayed for the other member.
//
// A client that encrypts announces a throwaway certificate's fingerprint (kind 6) right before
// its request or accept. When both sides announced one, the connection is TLS and each side takes
// the other only with the certificate announced for it; otherwise it is plain, as older clients
// speak it. The conversation says which, once the connection is up.
//
// Files wait their turn and go one at a time (FileSender); a file picked while there is no
// connection asks for one and goes once it is up. A transfer that is aborted or stalls cannot be
// finished on the stream, so it ends the connection; so does a stream the receiver
// (FileReceiver) cannot follow. The conversation survives all of it.
class DirectLink : public QObject {
    Q_OBJECT
  public:
    enum class State { Connect, Cancel, Accept, Accepting, Close };
    // Who a line of the conversation is headed by: the member, the other member, or the
    // connection itself ("Direct Connection:").
    enum class Speaker { Own, Peer, Connection };
    // The handshake kinds of (2, 15) and (2, 17). kFingerprint goes right before the request or
    // accept it belongs to, and only counts for that one.
    enum Kind { kRequest = 1, kCancel = 2, kError = 3, kAbort = 4, kAccept = 5, kFingerprint = 6 };

    struct Options {
        QString ownName;
        int lowerPort = 2000;
        int upperPort = 2100;
        bool tunnel = false;
        bool autoAccept = false;
        // Announce a certificate, so that the connection is TLS when the peer announces one too.
        bool encrypt = true;
    };

    static constexpr int kConnectTimeoutMs = 30000;
    static constexpr int kMaxWaitingFiles = 20;
    // The `Transfer` timer: how often the progress label is brought up to date.
    static constexpr int kProgressIntervalMs = 500;
    // What the socket may hold unread: beyond it TCP slows the sender down, so a fast sender
    // and a slow disk never pile the file up in memory.
    static constexpr qint64 kReadBufferSize = 1024 * 1024;

    DirectLink(const QString& peer, const QString& downloadFolder, Prompter& prompter,
               QObject* parent = nullptr);
    ~DirectLink() override;

    QString peer() const { return peer_; }
    void setPeer(const QString& peer) { peer_ = peer; }
    void setOptions(const Options& options) { options_ = options; }
    const Options& options() const { return options_; }

    State state() const { return state_; }
    QString linkText() const;
    // The send button (`XPButton6`): "Send File", "*Accept*"/"Accept" (blinking while an offer
    // waits), "Accepting", "Sending..", "Aborting..".
    QString buttonCaption() const;
    QString buttonToolTip() const;
    bool sending() const;
    bool receiving() const;
    int waitingFiles() const { return static_cast<int>(waiting_.size()); }
    // The label under the progress bars: "Filesize: N kb" as a file starts, then the progress.
    QString outgoingLabel() const { return outgoingLabel_; }
    QString incomingLabel() const { return incomingLabel_; }
    const TransferProgress& outgoing() const { return outgoing_; }
    const TransferProgress& incoming() const { return incoming_; }
    quint16 listeningPort() const { return listener_.listening() ? listener_.port() : 0; }
    // The TLS version of the connection ("TLS 1.3"), or empty while it is plain or not up.
    QString encryption() const;

    // What a click on the conversation's link does in the present state.
    void activateLink();
    // The send button: accepts a waiting offer, or aborts the file going out. False when the
    // button means "Send File" (the window then asks which file).
    bool pressButton();
    void request();
    void cancel();
    void accept();
    // Ends the connection (a file going out is aborted first).
    void disconnectPeer();
    // Queues a file (the checks come first: one at a time, no folders, not empty, not too large);
    // asks for a connection when there is none. False when refused (the member was told).
    bool sendFile(const QString& path);
    void abortTransfer();
    // The conversation closes: a pending handshake is withdrawn and everything is closed without
    // a word in the (gone) pane.
    void conversationClosing();
    // (2, 17) from the other member.
    void onHandshake(int kind, const QString& argument, const QString& address);
    // The `Typing` timer's tick: the accept button blinks.
    void blink();

    void setStallTimeout(int milliseconds);
    void setConnectTimeout(int milliseconds) { connectTimer_.setInterval(milliseconds); }

  signals:
    void handshake(int kind, const QString& argument);
    void line(DirectLink::Speaker speaker, const QString& text);
    // A file came in, or one of the member's went out: shown like a received one.
    void fileShown(const QString& name, const QString& path);
    void changed();
    void progressChanged();

  private:
    void setState(State state);
    bool listenInRange(quint16& port);
    // Makes this attempt's certificate and announces it (nothing when encryption is off or
    // unavailable: the connection is then plain).
    void announce();
    bool encrypting() const;
    QString encryptionLine() const;
    void connectOut(const QHostAddress& address, quint16 port);
    void connectFailed(const QString& reason);
    void established(QSslSocket* socket, bool listeningSide);
    void resetPending();
    void dropConnection(bool tell);
    void onReadyRead();
    void sendNext();
    void onSenderFinished();
    void abortAndDrop();
    void updateProgress();
    void refuse(const QString& text, const QString& title, bool critical = false);

    QString peer_;
    QString downloadFolder_;
    Prompter& prompter_;
    Options options_;
    State state_ = State::Connect;
    bool offeredByPeer_ = false;
    bool blinkOn_ = false;
    bool aborting_ = false;

    // The other member's offer: its address and the port it listens on (0: it cannot listen).
    QHostAddress offerAddress_;
    quint16 offerPort_ = 0;

    // This attempt's certificate (null: none was announced), the fingerprint the other member
    // announced with its offer or accept (empty: none), and one that came and waits for the
    // handshake it belongs to.
    std::shared_ptr<const PeerCertificate> ownCertificate_;
    QString peerFingerprint_;
    QString pendingFingerprint_;

    PeerListener listener_;
    QSslSocket* connecting_ = nullptr;
    PeerTlsHandshake* handshake_ = nullptr;
    QTimer connectTimer_;
    QSslSocket* socket_ = nullptr;
    FileSender* sender_ = nullptr;
    std::unique_ptr<FileReceiver> receiver_;
    QByteArray readBuffer_;

    std::deque<QString> waiting_;
    QString sendingName_;
    QString sendingPath_;
    TransferProgress outgoing_;
    TransferProgress incoming_;
    QString outgoingLabel_;
    QString incomingLabel_;
    QTimer progressTimer_;
    QElapsedTimer clock_;
    int stallTimeoutMs_ = 0;
};

}  // namespace tavren
