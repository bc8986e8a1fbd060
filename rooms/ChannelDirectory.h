#pragma once

#include <QList>
#include <QObject>

#include "core/ServerMessage.h"
#include "rooms/DirectoryEntry.h"

namespace tavren {

class RoomSession;
class ServerSession;

// The server's list of channels: asked for with (2, 2) "Get", answered with (2, 2) records,
// which replace the list whole. Joining from it goes through the room session, which refuses a
// channel that is open already.
class ChannelDirectory : public QObject {
    Q_OBJECT
  public:
    ChannelDirectory(ServerSession& server, RoomSession& rooms, QObject* parent = nullptr);

    const QList<DirectoryEntry>& entries() const { return entries_; }
    // Asks the server for the list (nothing while offline).
    void request();
    // The directory's join button on one channel; false when nothing was sent.
    bool join(const QString& channel);

    void onDirectory(const ServerMessage& message);

  signals:
    void listed();

  private:
    ServerSession& server_;
    RoomSession& rooms_;
    QList<DirectoryEntry> entries_;
};

}  // namespace tavren
