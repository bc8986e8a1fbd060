#pragma once

#include <QFile>
#include <QObject>
#include <QString>
#include <QTimer>
#include <vector>

class QSslSocket;
class QTcpSocket;

namespace tavren {

// Sends one file over a direct connection as one transfer frame, driven by the socket's
// bytesWritten signal: a small state machine, never a loop that waits.
//
// The file is read in blocks of 2048 bytes. When what is left fits in one block, the read asks
// for one byte more than is left, so that it reaches the end of the file, and that surplus byte
// (if the file grew meanwhile) is dropped; a file of exactly 2048 bytes is thus one read of 2049.
// Blocks are handed to the socket while less than kWindow bytes wait in it, which keeps a fast
// link busy and the memory used bounded, however large the file.
//
// Over TLS the socket takes the plain bytes into its TLS engine at once (bytesWritten) and holds
// the encrypted records until they leave (encryptedBytesWritten): both count as waiting, so the
// bound and the stall rule hold for what really left, encrypted or not.
//
// The sender gives up when no byte has left for `stallTimeout` (30 s): the peer is not reading.
// A file that shrinks while it is read cannot fill the frame it announced: that fails too.
// Either way the frame cannot be finished, and the owner must end the connection.
class FileSender : public QObject {
    Q_OBJECT
  public:
    static constexpr qint64 kWindow = 256 * 1024;
    static constexpr int kStallTimeoutMs = 30000;

    enum class Refusal { None, Unreadable, Empty, TooLarge };
    enum class Failure { Stalled, FileChanged };

    explicit FileSender(QTcpSocket& socket, QObject* parent = nullptr);

    // Opens the file and writes the frame's start. Refused (and nothing written) for a file that
    // cannot be read, is empty, or is too large for the length field.
    Refusal start(const QString& path);
    // Stops at once; the file is closed. What was written stays written.
    void cancel();

    bool running() const { return running_; }
    QString path() const { return file_.fileName(); }
    // The name in the frame: the file's own name, with every character that has no byte in the
    // wire's code page replaced by "_".
    static QString wireName(const QString& path);
    // Bytes of the frame that left, and all there are.
    qint64 written() const { return written_; }
    qint64 total() const { return total_; }

    void setStallTimeout(int milliseconds) { stall_.setInterval(milliseconds); }

    // The sizes of the reads a file of `size` bytes is sent in.
    static std::vector<qint64> blockReads(qint64 size);

  signals:
    void progressed();
    // Every byte of the frame has left.
    void finished();
    void failed(FileSender::Failure failure);

  private:
    void onBytesWritten();
    // Bytes handed to the socket that have not left yet.
    qint64 waiting() const;
    void pump();
    void fail(Failure failure);

    QTcpSocket& socket_;
    QSslSocket* secure_;  // the same socket when it can be encrypted
    QFile file_;
    QTimer stall_;
    qint64 size_ = 0;
    qint64 sent_ = 0;    // file bytes handed to the socket
    qint64 handed_ = 0;  // frame bytes handed to the socket
    qint64 written_ = 0;
    qint64 total_ = 0;
    bool running_ = false;
    bool allQueued_ = false;
    QByteArray block_;
};

}  // namespace tavren
