#pragma once

#include <QHash>
#include <QImage>
#include <QSet>
#include <QString>
#include <QUrl>

namespace tavren {

// The files that direct connections have put in conversation panes, and the only local files a
// pane may show or open. Chat markup comes from other members, so a picture address or a link
// in it is honoured only when it names a file this client received or sent itself.
//
// Pictures are read at the size the pane shows them (at most 400 on their bounded side), so a
// large photo costs a small image, and are kept once read.
class ShownFiles {
  public:
    static constexpr int kMaxKeptPictures = 200;

    void add(const QString& path);
    bool contains(const QString& path) const;
    // The picture behind an image address in a pane ("file:///" + path, blanks as "%20"); null
    // for an address that names no file added here.
    QImage picture(const QString& address);
    // The local file a clicked link names, when it is one added here; else empty.
    QString fileFor(const QUrl& link) const;

    // The local path an address or link names ("file:///" + path, "%20" for blanks, backslashes
    // as written on Windows); empty when it names no local file.
    static QString localPath(const QString& address);

  private:
    QSet<QString> paths_;
    QHash<QString, QImage> pictures_;
};

}  // namespace tavren
