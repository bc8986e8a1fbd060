#include "contacts/LineFile.h"

#include <QFile>
#include <QSaveFile>
#include <QStringDecoder>

namespace tavren {

QStringList LineFile::readLines(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray bytes = file.read(LargestFile);
    QStringDecoder utf8(QStringConverter::Utf8);
    QString text = utf8.decode(bytes);
    if (utf8.hasError()) {
        text = QString::fromLatin1(bytes);
    }
    if (text.startsWith(QChar(0xFEFF))) {
        text.remove(0, 1);
    }
    QStringList lines = text.split(QLatin1Char('\n'));
    // The break after the last line does not start another one.
    if (!lines.isEmpty() && lines.last().isEmpty()) {
        lines.removeLast();
    }
    for (QString& line : lines) {
        if (line.endsWith(QLatin1Char('\r'))) {
            line.chop(1);
        }
    }
    return lines;
}

bool LineFile::writeLines(const QString& path, const QStringList& lines) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    QByteArray bytes;
    for (const QString& line : lines) {
        bytes += line.toUtf8();
        bytes += '\n';
    }
    file.write(bytes);
    return file.commit();
}

QString LineFile::oneLine(const QString& text) {
    QString line = text;
    line.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    return line;
}

}  // namespace tavren
