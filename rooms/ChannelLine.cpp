#include "rooms/ChannelLine.h"

namespace tavren {

ChannelLine ChannelLine::parse(const QString& payload) {
    ChannelLine line;
    const qsizetype first = payload.indexOf(QLatin1Char(':'));
    if (first < 0) {
        line.channel = payload;
        return line;
    }
    line.channel = payload.left(first);
    const qsizetype second = payload.indexOf(QLatin1Char(':'), first + 1);
    const QString senderField =
        second < 0 ? payload.mid(first + 1) : payload.mid(first + 1, second - first - 1);
    if (second >= 0) {
        line.text = payload.mid(second + 1);
    }
    const qsizetype mark = senderField.indexOf(QChar(1));
    line.sender = mark < 0 ? senderField : senderField.left(mark);
    if (mark >= 0) {
        line.format = senderField.mid(mark + 1);
    }
    return line;
}

}  // namespace tavren
