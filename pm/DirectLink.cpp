#include "pm/DirectLink.h"

#include <QDir>
#include <QFileInfo>
#include <QSslSocket>
#include <cmath>
#include <utility>

#include "core/Prompter.h"
#include "core/TlsProtocolName.h"
#include "core/WireText.h"
#include "core/protocol/TransferFrame.h"
#include "pm/FileReceiver.h"
#include "pm/FileSender.h"
#include "pm/PeerAddress.h"
#include "pm/PeerCertificate.h"
#include "pm/PeerTlsHandshake.h"

namespace tavren {

namespace {

const QString kTransferError = QStringLiteral("Transfer Error:");

QString portText(quint16 port) {
    return QStringLiteral("  Port: [<b>") + QString::number(port) + QStringLiteral("</b>]");
}

QString kilobytes(qint64 bytes) {
    return QString::number(static_cast<qint64>(std::ceil(static_cast<double>(bytes) / 1024.0)));
}

}  // namespace

DirectLink::DirectLink(const QString& peer, const QString& downloadFolder, Prompter& prompter,
                       QObject* parent)
    : QObject(parent), peer_(peer), downloadFolder_(downloadFolder), prompter_(prompter) {
    clock_.start();
    connectTimer_.setSingleShot(true);
    connectTimer_.setInterval(kConnectTimeoutMs);
    connect(&connectTimer_, &QTimer::timeout, this,
            [this] { connectFailed(QStringLiteral("Connection timed out")); });
    progressTimer_.setObjectName(QStringLiteral("Transfer"));
    progressTimer_.setInterval(kProgressIntervalMs);
    connect(&progressTimer_, &QTimer::timeout, this, &DirectLink::updateProgress);
    connect(&listener_, &PeerListener::peerConnected, this,
            [this](QSslSocket* socket) { established(socket, true); });
    connect(&listener_, &PeerListener::impostorRefused, this,
            [this](const QHostAddress& from, const QString& reason) {
                emit line(Speaker::Connection,
                          QStringLiteral("** Refused a connection from %1: it is not %2's client "
                                         "(%3) **")
                              .arg(PeerAddress::text(from), peer_, reason));
            });
}

DirectLink::~DirectLink() {
    // Quietly: whoever listened to this link may be gone already.
    blockSignals(true);
    conversationClosing();
}

QString DirectLink::linkText() const {
    switch (state_) {
        case State::Connect:
            return offeredByPeer_ ? QStringLiteral("- Connect to Share Files/Pictures..")
                                  : QStringLiteral("- Connect to Send Files/Pictures..");
        case State::Cancel:
            return QStringLiteral("- Cancel Direct Connection..");
        case State::Accept:
            return QStringLiteral("- Accept Direct Connection..");
        case State::Accepting:
            return QStringLiteral("- Connecting..");
        case State::Close:
            return QStringLiteral("- Abort Direct Connection..");
    }
    return {};
}

bool DirectLink::sending() const {
    return sender_ != nullptr && sender_->running();
}

bool DirectLink::receiving() const {
    return receiver_ != nullptr && receiver_->receiving();
}

QString DirectLink::buttonCaption() const {
    if (aborting_) {
        return QStringLiteral("Aborting..");
    }
    if (sending()) {
        return QStringLiteral("Sending..");
    }
    if (state_ == State::Accept) {
        return blinkOn_ ? QStringLiteral("*Accept*") : QStringLiteral("Accept");
    }
    if (state_ == State::Accepting) {
        return QStringLiteral("Accepting");
    }
    return QStringLiteral("Send File");
}

QString DirectLink::buttonToolTip() const {
    if (sending()) {
        return QStringLiteral("Click to Cancel Current File Transfer..");
    }
    if (state_ == State::Accept) {
        return QStringLiteral("Accept the direct connection %1 offers").arg(peer_);
    }
    return QStringLiteral("Send a file to %1 over a direct connection").arg(peer_);
}

void DirectLink::setState(State state) {
    if (state != State::Accept) {
        blinkOn_ = false;
    }
    state_ = state;
    emit changed();
}

void DirectLink::blink() {
    if (state_ == State::Accept) {
        blinkOn_ = !blinkOn_;
        emit changed();
    }
}

void DirectLink::setStallTimeout(int milliseconds) {
    stallTimeoutMs_ = milliseconds;
    if (sender_ != nullptr) {
        sender_->setStallTimeout(milliseconds);
    }
}

void DirectLink::refuse(const QString& text, const QString& title, bool critical) {
    prompter_.message(text, title, critical ? Prompter::Icon::Critical : Prompter::Icon::Warning);
}

void DirectLink::activateLink() {
    switch (state_) {
        case State::Connect:
            request();
            break;
        case State::Cancel:
            cancel();
            break;
        case State::Accept:
            accept();
            break;
        case State::Accepting:
            break;
        case State::Close:
            disconnectPeer();
            break;
    }
}

bool DirectLink::pressButton() {
    if (sending()) {
        abortTransfer();
        return true;
    }
    if (state_ == State::Accept) {
        accept();
        return true;
    }
    return state_ == State::Accepting || aborting_;
}

bool DirectLink::listenInRange(quint16& port) {
    const auto found = listener_.listenInRange(options_.lowerPort, options_.upperPort);
    if (!found) {
        refuse(
            QStringLiteral("Cannot find free port within Port Range, Check Configuration Settings"),
            QStringLiteral("No Free Port Found for Connection"));
        return false;
    }
    port = *found;
    return true;
}

void DirectLink::request() {
    if (state_ == State::Accept) {
        accept();
        return;
    }
    if (state_ != State::Connect) {
        return;
    }
    if (options_.tunnel) {
        // Nobody can connect to this member: the other one listens, and this one connects out.
        announce();
        emit handshake(kRequest, QStringLiteral("0"));
        emit line(Speaker::Own, QStringLiteral("** Requesting Direct Connection..  (you are "
                                               "behind a firewall: your buddy listens) **"));
        setState(State::Cancel);
        return;
    }
    quint16 port = 0;
    if (!listenInRange(port)) {
        waiting_.clear();
        emit changed();
        return;
    }
    announce();
    emit handshake(kRequest, QString::number(port));
    emit line(Speaker::Own, QStringLiteral("** Requesting Direct Connection..") + portText(port) +
                                QStringLiteral(" **"));
    setState(State::Cancel);
}

void DirectLink::cancel() {
    if (state_ != State::Cancel) {
        return;
    }
    resetPending();
    waiting_.clear();
    emit handshake(kCancel, QStringLiteral("0"));
    emit line(Speaker::Own, QStringLiteral("** Direct Connection Canceled.. **"));
    setState(State::Connect);
}

void DirectLink::accept() {
    if (state_ != State::Accept) {
        return;
    }
    if (offerPort_ != 0) {
        announce();
        emit handshake(kAccept, QStringLiteral("0"));
        emit line(Speaker::Own, QStringLiteral("** Establishing Connection..") +
                                    portText(offerPort_) + QStringLiteral(" **"));
        setState(State::Accepting);
        connectOut(offerAddress_, offerPort_);
        return;
    }
    // The other member cannot be connected to: this side listens and names its port.
    quint16 port = 0;
    if (!listenInRange(port)) {
        emit handshake(kError, QStringLiteral("Cannot find free port within Port Range"));
        waiting_.clear();
        setState(State::Connect);
        return;
    }
    announce();
    listener_.expect(offerAddress_, encrypting() ? ownCertificate_ : nullptr, peerFingerprint_);
    emit handshake(kAccept, QString::number(port));
    emit line(Speaker::Own, QStringLiteral("** Establishing Connection..") + portText(port) +
                                QStringLiteral(" **"));
    setState(State::Accepting);
}

void DirectLink::announce() {
    ownCertificate_ = options_.encrypt ? PeerCertificate::make() : nullptr;
    if (ownCertificate_ != nullptr) {
        emit handshake(kFingerprint, ownCertificate_->fingerprint());
    }
}

bool DirectLink::encrypting() const {
    return ownCertificate_ != nullptr && !peerFingerprint_.isEmpty();
}

QString DirectLink::encryption() const {
    return socket_ != nullptr ? TlsProtocolName::of(*socket_) : QString();
}

QString DirectLink::encryptionLine() const {
    const QString version = encryption();
    if (!version.isEmpty()) {
        return QStringLiteral("** Direct connection encrypted (") + version +
               QStringLiteral(") **");
    }
    if (!options_.encrypt) {
        return QStringLiteral("** Direct connection NOT encrypted (encryption is off here) **");
    }
    if (ownCertificate_ == nullptr) {
        return QStringLiteral(
            "** Direct connection NOT encrypted (TLS is not available on this computer) **");
    }
    return QStringLiteral("** Direct connection NOT encrypted (%1's client is an older version) **")
        .arg(peer_);
}

void DirectLink::connectOut(const QHostAddress& address, quint16 port) {
    resetPending();
    if (address.isNull()) {
        connectFailed(QStringLiteral("The server did not say where %1 is").arg(peer_));
        return;
    }
    connecting_ = new QSslSocket(this);
    QSslSocket* socket = connecting_;
    const auto finish = [this, socket] {
        connecting_ = nullptr;
        connectTimer_.stop();
        socket->disconnect(this);
        established(socket, false);
    };
    connect(socket, &QSslSocket::connected, this, [this, socket, finish] {
        if (socket != connecting_) {
            return;
        }
        if (!encrypting()) {
            finish();
            return;
        }
        // Within the same 30 s as the connection itself.
        handshake_ = new PeerTlsHandshake(*socket, PeerTlsHandshake::Role::Client, ownCertificate_,
                                          peerFingerprint_, this);
        connect(handshake_, &PeerTlsHandshake::secured, this, [this, finish] {
            handshake_->deleteLater();
            handshake_ = nullptr;
            finish();
        });
        connect(handshake_, &PeerTlsHandshake::refused, this, [this](const QString& reason) {
            connectFailed(QStringLiteral("the other side is not %1's client: ").arg(peer_) +
                          reason);
        });
        handshake_->start();
    });
    connect(socket, &QSslSocket::errorOccurred, this, [this, socket] {
        if (socket == connecting_ && handshake_ == nullptr) {
            connectFailed(socket->errorString());
        }
    });
    connectTimer_.start();
    socket->connectToHost(address, port);
}

void DirectLink::connectFailed(const QString& reason) {
    resetPending();
    waiting_.clear();
    emit line(Speaker::Connection, QStringLiteral("** Error: You Could NOT Connect Because: (") +
                                       reason + QStringLiteral(") **"));
    emit handshake(kError, reason);
    setState(State::Connect);
}

void DirectLink::resetPending() {
    listener_.stop();
    connectTimer_.stop();
    if (handshake_ != nullptr) {
        handshake_->disconnect(this);
        handshake_->deleteLater();
        handshake_ = nullptr;
    }
    if (connecting_ != nullptr) {
        QSslSocket* socket = connecting_;
        connecting_ = nullptr;
        socket->disconnect(this);
        socket->abort();
        socket->deleteLater();
    }
}

void DirectLink::established(QSslSocket* socket, bool listeningSide) {
    resetPending();
    if (socket_ != nullptr) {
        socket->abort();
        socket->deleteLater();
        return;
    }
    socket_ = socket;
    socket_->setParent(this);
    socket_->setReadBufferSize(kReadBufferSize);
    connect(socket_, &QSslSocket::readyRead, this, &DirectLink::onReadyRead);
    connect(socket_, &QSslSocket::disconnected, this, [this] { dropConnection(true); });
    connect(socket_, &QSslSocket::errorOccurred, this, [this] {
        // A reset or a failed write: the connection is over either way.
        if (socket_ != nullptr && socket_->state() != QAbstractSocket::ConnectedState) {
            dropConnection(true);
        }
    });
    sender_ = new FileSender(*socket_, this);
    if (stallTimeoutMs_ > 0) {
        sender_->setStallTimeout(stallTimeoutMs_);
    }
    connect(sender_, &FileSender::progressed, this, [this] {
        if (!progressTimer_.isActive()) {
            progressTimer_.start();
        }
    });
    connect(sender_, &FileSender::finished, this, &DirectLink::onSenderFinished);
    connect(sender_, &FileSender::failed, this, [this](FileSender::Failure failure) {
        if (failure == FileSender::Failure::Stalled) {
            // The peer stopped reading; the frame can never be finished.
            dropConnection(true);
        } else {
            abortAndDrop();
        }
    });
    receiver_ = std::make_unique<FileReceiver>(downloadFolder_, peer_);
    if (listeningSide) {
        receiver_->removeLeftover();
        emit line(Speaker::Connection, QStringLiteral("<b>Connection has been established!</b>"));
    } else {
        emit line(Speaker::Connection, QStringLiteral("<b>Connection Established!</b>"));
    }
    emit line(Speaker::Connection, encryptionLine());
    setState(State::Close);
    sendNext();
    // Whatever the peer sent while its connection waited to be taken.
    if (socket_ != nullptr && socket_->bytesAvailable() > 0) {
        onReadyRead();
    }
}

void DirectLink::dropConnection(bool tell) {
    if (socket_ == nullptr) {
        return;
    }
    QSslSocket* socket = socket_;
    socket_ = nullptr;
    socket->disconnect(this);
    if (sender_ != nullptr) {
        sender_->cancel();
        sender_->disconnect(this);
        sender_->deleteLater();
        sender_ = nullptr;
    }
    receiver_.reset();  // drops a file coming in, with its temporary file
    socket->abort();
    socket->deleteLater();
    progressTimer_.stop();
    waiting_.clear();
    outgoingLabel_.clear();
    incomingLabel_.clear();
    if (tell) {
        emit line(Speaker::Connection, QStringLiteral("<b>Connection Has Been Lost..</b>"));
    }
    setState(State::Connect);
    emit progressChanged();
}

void DirectLink::disconnectPeer() {
    if (sending()) {
        abortTransfer();
        return;
    }
    dropConnection(true);
}

bool DirectLink::sendFile(const QString& path) {
    const QFileInfo info(path);
    if (info.isDir()) {
        refuse(QStringLiteral("Directories can't be transfered"), kTransferError);
        return false;
    }
    if (!info.isFile() || !info.isReadable()) {
        refuse(QStringLiteral("The file could not be read: ") + QDir::toNativeSeparators(path),
               kTransferError);
        return false;
    }
    if (info.size() == 0) {
        refuse(QStringLiteral("The File is Empty..."), QStringLiteral("Error: Empty File.."), true);
        return false;
    }
    const std::string name = WireText::toWire(FileSender::wireName(path));
    const auto largest = protocol::MaxTransferSize(name);
    if (static_cast<quint64>(info.size()) > largest) {
        refuse(QStringLiteral("%1 is too large: a direct connection carries files of at most %2 "
                              "bytes (4 GB). Nothing was sent.")
                   .arg(info.fileName())
                   .arg(largest),
               QStringLiteral("Error: File Too Large.."), true);
        return false;
    }
    if (waitingFiles() >= kMaxWaitingFiles) {
        refuse(QStringLiteral("%1 files are waiting to be sent already.").arg(kMaxWaitingFiles),
               kTransferError);
        return false;
    }
    waiting_.push_back(path);
    switch (state_) {
        case State::Close:
            sendNext();
            break;
        case State::Connect:
            request();
            break;
        case State::Accept:
            accept();
            break;
        case State::Cancel:
        case State::Accepting:
            break;
    }
    emit changed();
    return true;
}

void DirectLink::sendNext() {
    while (state_ == State::Close && sender_ != nullptr && !sender_->running() &&
           !waiting_.empty()) {
        const QString path = waiting_.front();
        waiting_.pop_front();
        switch (sender_->start(path)) {
            case FileSender::Refusal::None:
                sendingPath_ = path;
                sendingName_ = FileSender::wireName(path);
                outgoing_.start(sender_->total(), clock_.elapsed());
                outgoingLabel_ = QStringLiteral("Filesize: ") + kilobytes(QFileInfo(path).size()) +
                                 QStringLiteral(" kb");
                progressTimer_.start();
                emit changed();
                emit progressChanged();
                return;
            case FileSender::Refusal::Empty:
                refuse(QStringLiteral("The File is Empty..."),
                       QStringLiteral("Error: Empty File.."), true);
                break;
            case FileSender::Refusal::TooLarge:
                refuse(QStringLiteral("%1 is too large for a direct connection. Nothing was sent.")
                           .arg(QFileInfo(path).fileName()),
                       QStringLiteral("Error: File Too Large.."), true);
                break;
            case FileSender::Refusal::Unreadable:
                refuse(
                    QStringLiteral("The file could not be read: ") + QDir::toNativeSeparators(path),
                    kTransferError);
                break;
        }
    }
}

void DirectLink::onSenderFinished() {
    outgoing_.finish(clock_.elapsed());
    outgoingLabel_ = outgoing_.label();
    emit progressChanged();
    emit fileShown(sendingName_, sendingPath_);
    emit changed();
    sendNext();
}

void DirectLink::abortTransfer() {
    if (!sending()) {
        return;
    }
    aborting_ = true;
    emit changed();
    abortAndDrop();
}

void DirectLink::abortAndDrop() {
    aborting_ = true;
    if (sender_ != nullptr) {
        sender_->cancel();
    }
    emit line(Speaker::Own, QStringLiteral("** File Transfer Aborted **"));
    emit handshake(kAbort, QStringLiteral("0"));
    // The frame cannot be finished, and the peer could not tell where a next one starts.
    dropConnection(true);
    aborting_ = false;
    emit changed();
}

void DirectLink::onReadyRead() {
    while (socket_ != nullptr && receiver_ != nullptr && socket_->bytesAvailable() > 0) {
        readBuffer_.resize(
            static_cast<qsizetype>(qMin<qint64>(socket_->bytesAvailable(), 256 * 1024)));
        const qint64 got = socket_->read(readBuffer_.data(), readBuffer_.size());
        if (got <= 0) {
            break;
        }
        const auto outcomes = receiver_->take(
            std::string_view(readBuffer_.constData(), static_cast<std::size_t>(got)));
        for (const FileReceiver::Outcome& outcome : outcomes) {
            switch (outcome.kind) {
                case FileReceiver::Outcome::Kind::Started:
                    incoming_.start(receiver_->frameBytesTotal(), clock_.elapsed());
                    incomingLabel_ = QStringLiteral("Filesize: ") + kilobytes(outcome.size) +
                                     QStringLiteral(" kb");
                    progressTimer_.start();
                    break;
                case FileReceiver::Outcome::Kind::BadName:
                    emit line(Speaker::Connection, QStringLiteral("  Bad Filename Recieved.."));
                    break;
                case FileReceiver::Outcome::Kind::Received:
                    incoming_.finish(clock_.elapsed());
                    incomingLabel_ = incoming_.label();
                    emit fileShown(outcome.name, outcome.path);
                    break;
                case FileReceiver::Outcome::Kind::Failed:
                    emit line(Speaker::Connection,
                              QStringLiteral("** Error: The file could not be received: (") +
                                  outcome.reason + QStringLiteral(") **"));
                    dropConnection(true);
                    return;
            }
        }
    }
    emit progressChanged();
}

void DirectLink::updateProgress() {
    const qint64 now = clock_.elapsed();
    const bool out = sending();
    const bool in = receiving();
    if (out) {
        outgoing_.update(sender_->written(), now);
        outgoingLabel_ = outgoing_.label();
    }
    if (in) {
        incoming_.update(receiver_->frameBytesRead(), now);
        incomingLabel_ = incoming_.label();
    }
    if (!out && !in) {
        progressTimer_.stop();
    }
    emit progressChanged();
}

void DirectLink::conversationClosing() {
    if (state_ == State::Cancel || state_ == State::Accept || state_ == State::Accepting) {
        emit handshake(kCancel, QStringLiteral("0"));
    }
    resetPending();
    waiting_.clear();
    if (socket_ != nullptr) {
        QSslSocket* socket = socket_;
        socket_ = nullptr;
        socket->disconnect(this);
        if (sender_ != nullptr) {
            sender_->cancel();
            sender_->disconnect(this);
        }
        receiver_.reset();
        socket->abort();
    }
    progressTimer_.stop();
    state_ = State::Connect;
}

void DirectLink::onHandshake(int kind, const QString& argument, const QString& address) {
    if (kind == kFingerprint) {
        pendingFingerprint_ = PeerCertificate::isFingerprint(argument) ? argument : QString();
        return;
    }
    // A fingerprint belongs to the handshake right after it, whatever that is.
    const QString announced = std::exchange(pendingFingerprint_, QString());
    switch (kind) {
        case kRequest: {
            if (state_ == State::Close) {
                // One connection per conversation: this one is busy.
                emit handshake(kCancel, QStringLiteral("0"));
                return;
            }
            if (state_ == State::Cancel) {
                // Both asked at once. The member whose name sorts first keeps the own request;
                // the other takes the offer, so both sides agree without a word.
                if (options_.ownName.compare(peer_, Qt::CaseInsensitive) < 0) {
                    return;
                }
                resetPending();
            } else if (state_ == State::Accepting) {
                resetPending();
            }
            bool isNumber = false;
            const uint port = argument.toUInt(&isNumber);
            if (!isNumber || port > 65535) {
                return;
            }
            offerPort_ = static_cast<quint16>(port);
            offerAddress_ = PeerAddress::parse(address);
            peerFingerprint_ = announced;
            offeredByPeer_ = true;
            emit line(Speaker::Peer, QStringLiteral("** Would like to Directly Connect.. **"));
            setState(State::Accept);
            if (options_.autoAccept) {
                accept();
            }
            return;
        }
        case kCancel:
            if (state_ == State::Close || state_ == State::Connect) {
                return;
            }
            emit line(Speaker::Peer, QStringLiteral("** Canceled Direct Connection Request.. **"));
            resetPending();
            waiting_.clear();
            setState(State::Connect);
            return;
        case kError:
            emit line(Speaker::Peer, QStringLiteral("** Error: Your Buddy Could NOT Connect "
                                                    "Because: (") +
                                         argument + QStringLiteral(") **"));
            if (state_ != State::Close && state_ != State::Connect) {
                resetPending();
                waiting_.clear();
                setState(State::Connect);
            }
            return;
        case kAbort:
            emit line(Speaker::Peer, QStringLiteral("  ** File Transfer Aborted **"));
            if (receiver_ != nullptr && receiver_->receiving()) {
                // The sender ends the connection too; the partial file goes now.
                dropConnection(true);
            }
            return;
        case kAccept: {
            if (state_ != State::Cancel) {
                return;
            }
            emit line(Speaker::Peer, QStringLiteral("  ** Attempting Direct Connection.. **"));
            const QHostAddress peerAddress = PeerAddress::parse(address);
            peerFingerprint_ = announced;
            if (listener_.listening()) {
                listener_.expect(peerAddress, encrypting() ? ownCertificate_ : nullptr,
                                 peerFingerprint_);
                return;
            }
            // Behind a firewall: the other member listens on the port it names.
            const uint port = argument.toUInt();
            if (port == 0 || port > 65535) {
                return;
            }
            setState(State::Accepting);
            connectOut(peerAddress, static_cast<quint16>(port));
            return;
        }
        default:
            return;
    }
}

}  // namespace tavren
