#pragma once

#include <QFile>
#include <QString>
#include <string_view>
#include <vector>

#include "core/protocol/TransferFrame.h"

namespace tavren {

// Receives the files of one direct connection into the download folder.
//
// The bytes of a file go to the temporary file "<download folder>/<peer>.dat" as they arrive
// (through QFile's small buffer), so a file of any size costs the same little memory. When its
// frame is complete, the temporary file is moved to its own name in the download folder,
// replacing a file of that name there. The name is checked (ReceivedFileName) as soon as the
// header is in: a refused name is reported at once and its bytes are read and dropped, never
// written.
//
// A stream that breaks the frame (see TransferFrameReader), a file that cannot be written, or a
// file larger than the room left on the disk is a failure: the temporary file goes, and the
// owner must end the connection, since the stream cannot be followed any further.
class FileReceiver {
  public:
    struct Outcome {
        enum class Kind {
            Started,   // a file is coming: `name` (as sent), `size`
            BadName,   // its name was refused: nothing of it is written
            Received,  // `path` holds it, under `name`
            Failed,    // `reason` says why; end the connection
        };
        Kind kind;
        QString name;
        QString path;
        QString reason;
        qint64 size = 0;
    };

    FileReceiver(const QString& downloadFolder, const QString& peer);
    ~FileReceiver();
    FileReceiver(const FileReceiver&) = delete;
    FileReceiver& operator=(const FileReceiver&) = delete;

    // Takes bytes as they came from the connection; what happened because of them, in order.
    std::vector<Outcome> take(std::string_view bytes);
    // The connection is gone: a file coming in is dropped with its temporary file.
    void abandon();

    bool receiving() const { return reader_.InFrame(); }
    qint64 frameBytesRead() const { return static_cast<qint64>(reader_.FrameBytesRead()); }
    qint64 frameBytesTotal() const { return static_cast<qint64>(reader_.FrameBytesTotal()); }
    QString temporaryPath() const { return temporary_.fileName(); }
    // Removes what an earlier connection may have left behind.
    void removeLeftover();

  private:
    void begin(std::vector<Outcome>& outcomes);
    void finish(std::vector<Outcome>& outcomes);
    void failWith(std::vector<Outcome>& outcomes, const QString& reason);

    QString folder_;
    QFile temporary_;
    protocol::TransferFrameReader reader_;
    QString name_;  // the checked name of the file coming in; empty when refused
    bool skipping_ = false;
    bool failed_ = false;
};

}  // namespace tavren
