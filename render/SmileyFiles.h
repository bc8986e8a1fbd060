#pragma once

#include <QImage>
#include <QString>

namespace tavren {

// The smiley pictures under a data root, and the one question a pane asks before it shows an
// image from chat markup: is this address one of our smiley files? Chat markup is typed by
// other members, so any other address (the web, other local files, devices) is refused.
class SmileyFiles {
  public:
    // A smiley is a small picture; a larger file in the folder is not shown.
    static constexpr qint64 MaxFileSize = 1 << 20;

    explicit SmileyFiles(const QString& dataRoot);

    QString folder() const { return folder_; }
    // dataRoot/smiles/1NN.gif
    QString pictureFile(int number) const;

    // The local file `address` names when it is a regular file directly in the smiles folder,
    // else empty. Understands the addresses chat lines carry ("file:///" + data root +
    // "\smiles\105.gif", spaces as "%20") and ordinary local file URLs.
    QString localFile(const QString& address) const;
    // The picture at `address`; a null image when the address is refused or unreadable.
    QImage load(const QString& address) const;

  private:
    QString folder_;
};

}  // namespace tavren
