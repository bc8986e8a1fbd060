#include "render/SmileyFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include "render/SmileyCodes.h"

namespace tavren {

namespace {

// Chat lines write the data root as the folder was spelt when the line was made, with
// backslashes before "smiles" and spaces as "%20"; Qt may hand the address back with the
// backslashes percent-encoded.
QString pathOf(const QString& address) {
    QString path;
    if (address.startsWith(QLatin1String("file:///"), Qt::CaseInsensitive)) {
        path = address.mid(8);
    } else if (address.startsWith(QLatin1String("file:"), Qt::CaseInsensitive)) {
        const QUrl url(address);
        if (!url.isLocalFile() || !url.host().isEmpty()) {
            return {};
        }
        path = url.toLocalFile();
    } else {
        return {};
    }
    path.replace(QLatin1String("%5C"), QLatin1String("/"), Qt::CaseInsensitive);
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    path.replace(QLatin1String("%20"), QLatin1String(" "));
    if (!QDir::isAbsolutePath(path)) {
        // "file:///tmp/x" leaves "tmp/x" after the three slashes.
        path.prepend(QLatin1Char('/'));
    }
    return QDir::cleanPath(path);
}

Qt::CaseSensitivity fileNameCase() {
#if defined(Q_OS_WIN) || defined(Q_OS_MACOS)
    return Qt::CaseInsensitive;
#else
    return Qt::CaseSensitive;
#endif
}

}  // namespace

SmileyFiles::SmileyFiles(const QString& dataRoot)
    : folder_(QDir::cleanPath(dataRoot + QLatin1String("/smiles"))) {}

QString SmileyFiles::pictureFile(int number) const {
    return folder_ + QLatin1Char('/') + SmileyCodes::fileName(number);
}

QString SmileyFiles::localFile(const QString& address) const {
    const QString path = pathOf(address);
    if (path.isEmpty()) {
        return {};
    }
    const QFileInfo file(path);
    // cleanPath has resolved any "..", so the folder compares as text. isFile() follows links
    // and is false for devices and pipes, which could otherwise be read forever.
    if (file.absolutePath().compare(folder_, fileNameCase()) != 0 || !file.isFile() ||
        file.size() > MaxFileSize) {
        return {};
    }
    return path;
}

QImage SmileyFiles::load(const QString& address) const {
    const QString path = localFile(address);
    return path.isEmpty() ? QImage() : QImage(path);
}

}  // namespace tavren
