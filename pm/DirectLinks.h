#pragma once

#include <QObject>
#include <QString>
#include <QUrl>
#include <functional>
#include <map>

#include "core/ServerMessage.h"
#include "pm/DirectLink.h"
#include "pm/ShownFiles.h"

namespace tavren {

class ChatLineFormatter;
class PrivateChats;
class Prompter;
class ServerSession;
class Settings;

// The direct connections of the private conversations, one DirectLink per conversation (found by
// its index, the tab's tag), made when first needed and ended with the conversation.
//
// It carries each link's handshake to and from the server ((2, 15) out, (2, 17) in), keeps the
// links' options in step with the settings (port range, firewall, auto accept), shows what the
// links say as lines of their conversation, and shows the files they receive and send: pictures
// inline, other files as links that open the file. An offer from a member with no open
// conversation opens one (unless that member is ignored, or "Dim Private Messages" keeps new
// conversations out); other handshakes without a conversation are dropped, except a certificate's
// fingerprint, which is kept for the offer that comes right after it.
class DirectLinks : public QObject {
    Q_OBJECT
  public:
    DirectLinks(ServerSession& server, Settings& settings, PrivateChats& chats,
                const ChatLineFormatter& formatter, Prompter& prompter, const QString& dataRoot,
                QObject* parent = nullptr);
    ~DirectLinks() override;

    // "<data root>/downloaded": received files and the member's own screen captures.
    QString downloadFolder() const { return downloadFolder_; }
    // Whether the links announce a certificate (on unless turned off; off, they speak as an older
    // client does and every connection is plain).
    void setEncrypting(bool on) { encrypting_ = on; }

    // The link of the conversation at `position` (made when needed), or null.
    DirectLink* link(int position);
    DirectLink* linkForIndex(int index) const;

    // The member's actions on the conversation at `position`.
    void activateLink(int position);
    // The send button; false when it means "Send File" (the window then asks for a file).
    bool pressButton(int position);
    bool sendFile(int position, const QString& path);
    // Files dropped on the entry box: exactly one file, no folder ("You may only drag 1 file at
    // a time", "Directories can't be transfered").
    bool sendDropped(int position, const QList<QUrl>& urls);
    // Captures `area` of the frozen `screen` as a JPEG picture in the download folder and sends
    // it to the conversation at `position` (the one it was started from, wherever its tab has
    // gone meanwhile; nothing when it was closed).
    void sendScreenCapture(int position, const QImage& screen, const QRect& area);

    // The files shown in panes: the pictures a pane may show, the links it may open.
    ShownFiles& shownFiles() { return shown_; }
    // A link clicked in a pane: a shown file opens with the desktop's program; a shown file that
    // is gone says so. False for a link that names no shown file.
    bool openLink(const QUrl& link);
    // What opening a file does: QDesktopServices::openUrl unless replaced (tests).
    void setFileOpener(std::function<void(const QString& path)> opener) {
        opener_ = std::move(opener);
    }

    // "Save File As.." for a shown file: the new name needs an extension ("Error in filename...
    // No Extention.."), and an existing file is replaced only when the member says so.
    void saveCopy(const QString& shownPath, const QString& target);

    void onDirectConnection(const ServerMessage& message);

  signals:
    // The link of the conversation with tag `index` changed state, caption or progress.
    void linkChanged(int index);
    void progressChanged(int index);
    // A screen capture is in the download folder (or failed: empty path).
    void screenCaptured(const QString& path);

  private:
    DirectLink* make(int index, const QString& peer);
    void applyOptions(DirectLink& link);
    // Whether the link may start a handshake now: not with oneself (a box says so), not while
    // logged out (the conversation says so). Always true once a handshake is under way.
    bool mayAsk(int position, DirectLink& link);
    void send(DirectLink& link, int kind, const QString& argument);
    void showLine(DirectLink& link, DirectLink::Speaker speaker, const QString& text);
    void showFile(DirectLink& link, const QString& name, const QString& path);
    int indexOf(const DirectLink& link) const;

    ServerSession& server_;
    Settings& settings_;
    PrivateChats& chats_;
    const ChatLineFormatter& formatter_;
    Prompter& prompter_;
    QString dataRoot_;
    QString downloadFolder_;
    std::map<int, DirectLink*> links_;
    // Fingerprints from members without a conversation (yet), by lower-case name, each waiting
    // for the offer it precedes.
    std::map<QString, QString> fingerprints_;
    bool encrypting_ = true;
    ShownFiles shown_;
    std::function<void(const QString&)> opener_;
};

}  // namespace tavren
