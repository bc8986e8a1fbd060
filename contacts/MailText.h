#pragma once

#include <QString>
#include <QStringList>
#include <QTimeZone>

namespace tavren {

// The texts of mail as the member types and reads them, and as they travel.
class MailText {
  public:
    // The address field: with a "," in it, every name between the commas, trimmed (empty ones
    // left out); without one, the whole field, trimmed.
    static QStringList addressees(const QString& toField);
    // The typed body as it is sent: every line break (CR LF, or a lone CR or LF) becomes
    // "<br>"; the record separators U+0001 and U+0002 and other control characters but the
    // tab are dropped, since they would cut the record.
    static QString bodyToWire(const QString& typed);
    // A subject as it is sent: on one line, without control characters.
    static QString subjectToWire(const QString& typed);
    // A received body for the editor (reply, forward): "<br>" (any case, "<br/>" too) back to
    // line breaks, everything else as it came.
    static QString bodyForEditing(const QString& wireBody);

    static QString replySubject(const QString& subject) { return QStringLiteral("Re: ") + subject; }
    static QString forwardSubject(const QString& subject) {
        return QStringLiteral("Fwd: ") + subject;
    }
    // The body a reply or forward starts with: the earlier mail below a line that says whose
    // it was, so that the answer can be written above it.
    static QString quoted(const QString& heading, const QString& wireBody);

    // The server's sent time, "month/day/year - hour/minute" in UTC on a 24-hour clock
    // ("3/7/2026 - 14/5"), split at " - " and "/" and rebuilt with two-digit fields in `zone`:
    // "03/07/2026 02:05 PM". A text that does not read that way is shown as it came.
    static QString sentTime(const QString& serverText,
                            const QTimeZone& zone = QTimeZone::systemTimeZone());
};

}  // namespace tavren
