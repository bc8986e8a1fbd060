#include "contacts/MailText.h"

#include <QDateTime>
#include <QRegularExpression>

namespace tavren {

namespace {

QString withoutControls(const QString& text, bool keepTabs) {
    QString clean;
    clean.reserve(text.size());
    for (const QChar c : text) {
        if (c.unicode() < 32 || c.unicode() == 127) {
            if (keepTabs && c == QLatin1Char('\t')) {
                clean += c;
            }
            continue;
        }
        clean += c;
    }
    return clean;
}

QString twoDigits(int value) {
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
}

}  // namespace

QStringList MailText::addressees(const QString& toField) {
    if (!toField.contains(QLatin1Char(','))) {
        const QString only = toField.trimmed();
        return only.isEmpty() ? QStringList{} : QStringList{only};
    }
    QStringList names;
    for (const QString& part : toField.split(QLatin1Char(','))) {
        const QString name = part.trimmed();
        if (!name.isEmpty()) {
            names << name;
        }
    }
    return names;
}

QString MailText::bodyToWire(const QString& typed) {
    QString body = typed;
    body.replace(QLatin1String("\r\n"), QLatin1String("<br>"));
    body.replace(QLatin1Char('\r'), QLatin1String("<br>"));
    body.replace(QLatin1Char('\n'), QLatin1String("<br>"));
    // The editor's own paragraph and line separators are line breaks too.
    body.replace(QChar::ParagraphSeparator, QLatin1String("<br>"));
    body.replace(QChar::LineSeparator, QLatin1String("<br>"));
    return withoutControls(body, true);
}

QString MailText::subjectToWire(const QString& typed) {
    QString subject = typed;
    subject.replace(QLatin1Char('\t'), QLatin1Char(' '));
    subject.replace(QLatin1Char('\r'), QLatin1Char(' '));
    subject.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return withoutControls(subject, false).trimmed();
}

QString MailText::bodyForEditing(const QString& wireBody) {
    static const QRegularExpression lineBreak(QStringLiteral("<br\\s*/?>"),
                                              QRegularExpression::CaseInsensitiveOption);
    QString text = wireBody;
    return text.replace(lineBreak, QStringLiteral("\n"));
}

QString MailText::quoted(const QString& heading, const QString& wireBody) {
    return QStringLiteral("\n\n----- ") + heading + QStringLiteral(" -----\n") +
           bodyForEditing(wireBody);
}

QString MailText::sentTime(const QString& serverText, const QTimeZone& zone) {
    const QStringList halves = serverText.split(QStringLiteral(" - "));
    if (halves.size() != 2) {
        return serverText;
    }
    const QStringList dateParts = halves[0].split(QLatin1Char('/'));
    const QStringList clockParts = halves[1].split(QLatin1Char('/'));
    if (dateParts.size() != 3 || clockParts.size() != 2) {
        return serverText;
    }
    bool ok[5] = {};
    const int month = dateParts[0].toInt(&ok[0]);
    const int day = dateParts[1].toInt(&ok[1]);
    const int year = dateParts[2].toInt(&ok[2]);
    const int hour = clockParts[0].toInt(&ok[3]);
    const int minute = clockParts[1].toInt(&ok[4]);
    const QDate date(year, month, day);
    const QTime time(hour, minute);
    if (!(ok[0] && ok[1] && ok[2] && ok[3] && ok[4]) || !date.isValid() || !time.isValid()) {
        return serverText;
    }
    const QDateTime utc(date, time, Qt::UTC);
    const QDateTime local = utc.toTimeZone(zone);
    const int localHour = local.time().hour();
    const int twelve = localHour % 12 == 0 ? 12 : localHour % 12;
    return twoDigits(local.date().month()) + QLatin1Char('/') + twoDigits(local.date().day()) +
           QLatin1Char('/') + QString::number(local.date().year()) + QLatin1Char(' ') +
           twoDigits(twelve) + QLatin1Char(':') + twoDigits(local.time().minute()) +
           (localHour < 12 ? QStringLiteral(" AM") : QStringLiteral(" PM"));
}

}  // namespace tavren
