#include "pm/TransferMarkup.h"

#include "pm/ReceivedFileName.h"

namespace tavren {

QString TransferMarkup::escaped(const QString& text) {
    QString out = text.toHtmlEscaped();
    out.replace(QLatin1Char('\''), QLatin1String("&#39;"));
    return out;
}

QString TransferMarkup::href(const QString& path) {
    QString spaced = path;
    // "%" first, so that a name holding "%20" itself reads back as it is.
    spaced.replace(QLatin1Char('%'), QLatin1String("%25"));
    spaced.replace(QLatin1Char(' '), QLatin1String("%20"));
    return escaped(spaced);
}

QString TransferMarkup::source(const QString& path) {
    return QStringLiteral("file:///") + href(path);
}

QString TransferMarkup::imageTag(QSize pictureSize) {
    if (pictureSize.width() > kMaxSide) {
        return QStringLiteral("'><img border='1' width='400' src='");
    }
    if (pictureSize.height() > kMaxSide) {
        return QStringLiteral("'><img border='1' height='400' src='");
    }
    return QStringLiteral("'><img border='0' src='");
}

QSize TransferMarkup::shownSize(QSize natural) {
    if (natural.width() <= 0 || natural.height() <= 0) {
        return natural;
    }
    if (natural.width() > kMaxSide) {
        return QSize(kMaxSide, qMax(1, static_cast<int>(static_cast<qint64>(natural.height()) *
                                                        kMaxSide / natural.width())));
    }
    if (natural.height() > kMaxSide) {
        return QSize(qMax(1, static_cast<int>(static_cast<qint64>(natural.width()) * kMaxSide /
                                              natural.height())),
                     kMaxSide);
    }
    return natural;
}

QString TransferMarkup::forFile(const QString& name, const QString& path, QSize pictureSize) {
    const QString title = escaped(name);
    if (ReceivedFileName::isPicture(name) && pictureSize.isValid() && !pictureSize.isEmpty()) {
        return QStringLiteral("  <a id='image' title='") + title + QStringLiteral("' href='") +
               href(path) + imageTag(pictureSize) + source(path) + QStringLiteral("'></a>");
    }
    return QStringLiteral("  <a  id='file' title='") + title + QStringLiteral("' href='") +
           href(path) + QStringLiteral("'>") + title + QStringLiteral("</a>");
}

}  // namespace tavren
