#include "pm/FileReceiver.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QStorageInfo>

#include "core/WireText.h"
#include "pm/ReceivedFileName.h"

namespace tavren {

namespace {

// The temporary files of every connection receiving now, so that one peer's file name can never
// replace another's file while it is still coming in.
QSet<QString>& temporariesInUse() {
    static QSet<QString> inUse;
    return inUse;
}

QString key(const QString& path) {
    return QDir::cleanPath(path).toLower();
}

}  // namespace

FileReceiver::FileReceiver(const QString& downloadFolder, const QString& peer)
    : folder_(QDir::cleanPath(downloadFolder)) {
    temporary_.setFileName(folder_ + QLatin1Char('/') + ReceivedFileName::safePart(peer) +
                           QStringLiteral(".dat"));
}

FileReceiver::~FileReceiver() {
    abandon();
}

void FileReceiver::removeLeftover() {
    if (!temporary_.isOpen()) {
        QFile::remove(temporary_.fileName());
    }
}

void FileReceiver::abandon() {
    if (temporary_.isOpen()) {
        temporary_.close();
        QFile::remove(temporary_.fileName());
        temporariesInUse().remove(key(temporary_.fileName()));
    }
    reader_.Reset();
    skipping_ = false;
    failed_ = false;
}

std::vector<FileReceiver::Outcome> FileReceiver::take(std::string_view bytes) {
    using Kind = protocol::TransferFrameReader::Event::Kind;
    std::vector<Outcome> outcomes;
    while (!failed_) {
        const auto event = reader_.Next(bytes);
        switch (event.kind) {
            case Kind::kNeedMore:
                return outcomes;
            case Kind::kHeader:
                begin(outcomes);
                break;
            case Kind::kData:
                if (!skipping_ &&
                    temporary_.write(event.data.data(), static_cast<qint64>(event.data.size())) !=
                        static_cast<qint64>(event.data.size())) {
                    failWith(outcomes, QStringLiteral("the file could not be written: ") +
                                           temporary_.errorString());
                }
                break;
            case Kind::kComplete:
                finish(outcomes);
                break;
            case Kind::kError:
                failWith(outcomes,
                         QString::fromUtf8(
                             protocol::TransferFrameReader::ErrorText(event.error).data()));
                break;
        }
    }
    return outcomes;
}

void FileReceiver::begin(std::vector<Outcome>& outcomes) {
    const QString sent = WireText::fromWire(reader_.Name());
    const auto size = static_cast<qint64>(reader_.Size());
    outcomes.push_back({Outcome::Kind::Started, sent, {}, {}, size});
    auto checked = ReceivedFileName::check(sent);
    // The temporary file's own name would be overwritten by the next file that comes in.
    if (checked && key(folder_ + QLatin1Char('/') + *checked) == key(temporary_.fileName())) {
        checked.reset();
    }
    skipping_ = !checked;
    if (!checked) {
        name_.clear();
        outcomes.push_back({Outcome::Kind::BadName, sent, {}, {}, size});
        return;
    }
    name_ = *checked;
    QDir().mkpath(folder_);
    const QStorageInfo disk(folder_);
    if (disk.isValid() && disk.bytesAvailable() >= 0 && disk.bytesAvailable() < size) {
        failWith(outcomes, QStringLiteral("%1 bytes do not fit on the disk, which has room for %2")
                               .arg(size)
                               .arg(disk.bytesAvailable()));
        return;
    }
    if (!temporary_.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        failWith(outcomes,
                 QStringLiteral("the file could not be written: ") + temporary_.errorString());
        return;
    }
    temporariesInUse().insert(key(temporary_.fileName()));
}

void FileReceiver::finish(std::vector<Outcome>& outcomes) {
    if (skipping_) {
        skipping_ = false;
        return;
    }
    temporary_.close();
    temporariesInUse().remove(key(temporary_.fileName()));
    const QString temporaryPath = temporary_.fileName();
    if (reader_.Size() == 0) {
        QFile::remove(temporaryPath);
        return;
    }
    const QString target = folder_ + QLatin1Char('/') + name_;
    // The name rules keep every name inside the folder; this makes sure of it.
    if (QFileInfo(target).absolutePath() != QFileInfo(folder_).absoluteFilePath()) {
        QFile::remove(temporaryPath);
        outcomes.push_back({Outcome::Kind::BadName, name_, {}, {}, 0});
        return;
    }
    {
        const QFileInfo existing(target);
        if (temporariesInUse().contains(key(target)) ||
            (existing.exists() && existing.isDir() && !existing.isSymLink())) {
            QFile::remove(temporaryPath);
            outcomes.push_back({Outcome::Kind::BadName, name_, {}, {}, 0});
            return;
        }
        if ((existing.exists() || existing.isSymLink()) && !QFile::remove(target)) {
            QFile::remove(temporaryPath);
            failWith(outcomes, QStringLiteral("%1 could not be replaced").arg(name_));
            return;
        }
        if (!QFile::rename(temporaryPath, target)) {
            QFile::remove(temporaryPath);
            failWith(outcomes, QStringLiteral("%1 could not be written").arg(name_));
            return;
        }
    }
    outcomes.push_back({Outcome::Kind::Received, name_, target, {}, 0});
}

void FileReceiver::failWith(std::vector<Outcome>& outcomes, const QString& reason) {
    if (temporary_.isOpen()) {
        temporary_.close();
        QFile::remove(temporary_.fileName());
        temporariesInUse().remove(key(temporary_.fileName()));
    }
    failed_ = true;
    skipping_ = false;
    outcomes.push_back({Outcome::Kind::Failed, {}, {}, reason, 0});
}

}  // namespace tavren
