#include "pm/FileSender.h"

#include <QFileInfo>
#include <QSslSocket>

#include "core/WireText.h"
#include "core/protocol/TransferFrame.h"

namespace tavren {

namespace {

constexpr auto kBlock = static_cast<qint64>(protocol::kTransferBlockSize);

// How many bytes the next read asks for, with `remaining` bytes of the file still to send.
qint64 nextRead(qint64 remaining) {
    return remaining <= kBlock ? remaining + 1 : kBlock;
}

}  // namespace

FileSender::FileSender(QTcpSocket& socket, QObject* parent)
    : QObject(parent), socket_(socket), secure_(qobject_cast<QSslSocket*>(&socket)) {
    stall_.setSingleShot(true);
    stall_.setInterval(kStallTimeoutMs);
    connect(&stall_, &QTimer::timeout, this, [this] { fail(Failure::Stalled); });
    connect(&socket_, &QTcpSocket::bytesWritten, this, &FileSender::onBytesWritten);
    if (secure_ != nullptr) {
        connect(secure_, &QSslSocket::encryptedBytesWritten, this, &FileSender::onBytesWritten);
    }
}

qint64 FileSender::waiting() const {
    // Outside TLS the encrypted count is 0 and bytesToWrite is the socket's own queue.
    return socket_.bytesToWrite() + (secure_ != nullptr ? secure_->encryptedBytesToWrite() : 0);
}

std::vector<qint64> FileSender::blockReads(qint64 size) {
    std::vector<qint64> reads;
    for (qint64 remaining = size; remaining > 0;) {
        const qint64 read = nextRead(remaining);
        reads.push_back(read);
        remaining -= qMin(read, remaining);
    }
    return reads;
}

QString FileSender::wireName(const QString& path) {
    const QString name = QFileInfo(path).fileName();
    QString sent;
    for (qsizetype i = 0; i < name.size(); ++i) {
        const qsizetype length = name.at(i).isHighSurrogate() && i + 1 < name.size() ? 2 : 1;
        const QString character = name.mid(i, length);
        sent += WireText::fitsWire(character) ? character : QStringLiteral("_");
        i += length - 1;
    }
    return sent;
}

FileSender::Refusal FileSender::start(const QString& path) {
    cancel();
    file_.setFileName(path);
    if (!QFileInfo(path).isFile() || !file_.open(QIODevice::ReadOnly)) {
        return Refusal::Unreadable;
    }
    size_ = file_.size();
    if (size_ <= 0) {
        file_.close();
        return Refusal::Empty;
    }
    const std::string name = WireText::toWire(wireName(path));
    const auto start = protocol::EncodeTransferStart(name, static_cast<std::uint64_t>(size_));
    if (!start) {
        file_.close();
        return Refusal::TooLarge;
    }
    total_ = static_cast<qint64>(protocol::kTransferPrefixLength +
                                 protocol::TransferLength(name, static_cast<std::uint64_t>(size_)));
    sent_ = 0;
    written_ = 0;
    allQueued_ = false;
    running_ = true;
    handed_ = socket_.write(start->data(), static_cast<qint64>(start->size()));
    stall_.start();
    pump();
    return Refusal::None;
}

void FileSender::cancel() {
    running_ = false;
    stall_.stop();
    if (file_.isOpen()) {
        file_.close();
    }
}

void FileSender::pump() {
    while (running_ && !allQueued_ && waiting() < kWindow) {
        const qint64 remaining = size_ - sent_;
        const qint64 wanted = nextRead(remaining);
        const bool last = wanted > remaining;
        block_.resize(wanted);
        qint64 got = file_.read(block_.data(), wanted);
        if (last && got > remaining) {
            got = remaining;  // the surplus byte of a file that grew
        }
        if (got < qMin(wanted, remaining)) {
            fail(Failure::FileChanged);
            return;
        }
        handed_ += socket_.write(block_.constData(), got);
        sent_ += got;
        if (last) {
            handed_ += socket_.write(protocol::kTransferDataEnd.data(),
                                     static_cast<qint64>(protocol::kTransferDataEnd.size()));
            file_.close();
            allQueued_ = true;
        }
    }
}

void FileSender::onBytesWritten() {
    if (!running_) {
        return;
    }
    const qint64 pending = waiting();
    // Encrypted records are a little longer than what they carry, so over TLS this lags the
    // truth by a few bytes per record until the queue is empty; it never goes back.
    written_ = qBound(written_, handed_ - pending, total_);
    stall_.start();
    emit progressed();
    if (allQueued_ && pending == 0) {
        running_ = false;
        stall_.stop();
        emit finished();
        return;
    }
    pump();
}

void FileSender::fail(Failure failure) {
    cancel();
    emit failed(failure);
}

}  // namespace tavren
