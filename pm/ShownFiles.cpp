#include "pm/ShownFiles.h"

#include <QDir>
#include <QImageReader>

#include "pm/TransferMarkup.h"

namespace tavren {

QString ShownFiles::localPath(const QString& address) {
    QString path = address;
    if (path.startsWith(QLatin1String("file:"), Qt::CaseInsensitive)) {
        path = path.mid(5);
        while (path.startsWith(QLatin1String("//"))) {
            path = path.mid(1);
        }
    } else if (path.contains(QLatin1String("://"))) {
        return {};
    }
    path.replace(QLatin1String("%5C"), QLatin1String("/"), Qt::CaseInsensitive);
    path.replace(QLatin1String("%20"), QLatin1String(" "));
    path.replace(QLatin1String("%25"), QLatin1String("%"));
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (path.isEmpty()) {
        return {};
    }
    return QDir::cleanPath(path);
}

void ShownFiles::add(const QString& path) {
    const QString clean = QDir::cleanPath(path);
    paths_.insert(clean);
    // A file received again under the same name is a new picture.
    pictures_.remove(clean);
}

bool ShownFiles::contains(const QString& path) const {
    return !path.isEmpty() && paths_.contains(QDir::cleanPath(path));
}

QImage ShownFiles::picture(const QString& address) {
    const QString path = localPath(address);
    if (!contains(path)) {
        return {};
    }
    const auto known = pictures_.constFind(path);
    if (known != pictures_.constEnd()) {
        return *known;
    }
    QImageReader reader(path);
    const QSize shown = TransferMarkup::shownSize(reader.size());
    if (shown.isValid() && shown != reader.size()) {
        reader.setScaledSize(shown);
    }
    const QImage read = reader.read();
    if (pictures_.size() >= kMaxKeptPictures) {
        pictures_.clear();
    }
    pictures_.insert(path, read);
    return read;
}

QString ShownFiles::fileFor(const QUrl& link) const {
    if (!link.scheme().isEmpty() &&
        link.scheme().compare(QLatin1String("file"), Qt::CaseInsensitive) != 0) {
        return {};
    }
    const QString path = QDir::cleanPath(link.path(QUrl::FullyDecoded));
    return contains(path) ? path : QString();
}

}  // namespace tavren
