#include "render/PaneMarkup.h"

namespace tavren {

namespace {

bool isHexDigit(QChar c) {
    return (c >= QLatin1Char('0') && c <= QLatin1Char('9')) ||
           (c >= QLatin1Char('a') && c <= QLatin1Char('f')) ||
           (c >= QLatin1Char('A') && c <= QLatin1Char('F'));
}

bool isNameCharacter(QChar c) {
    return c.isLetterOrNumber() || c == QLatin1Char('-') || c == QLatin1Char('_');
}

bool endsWithColorAt(const QChar* text, qsizetype end) {
    static const char16_t word[] = u"color";
    if (end < 4) {
        return false;
    }
    for (qsizetype i = 0; i < 5; ++i) {
        if (text[end - 4 + i].toLower().unicode() != word[i]) {
            return false;
        }
    }
    return true;
}

void skipBlanks(const QChar* text, qsizetype size, qsizetype& at) {
    while (at < size && text[at].isSpace()) {
        ++at;
    }
}

// Where a bare six-digit hex value starts after the name "color" that ends at `end`, or -1.
qsizetype bareHexAfter(const QChar* text, qsizetype size, qsizetype end) {
    qsizetype at = end + 1;
    skipBlanks(text, size, at);
    if (at >= size || (text[at] != QLatin1Char('=') && text[at] != QLatin1Char(':'))) {
        return -1;
    }
    ++at;
    skipBlanks(text, size, at);
    if (at < size && (text[at] == QLatin1Char('\'') || text[at] == QLatin1Char('"'))) {
        ++at;
    }
    if (at + 6 > size) {
        return -1;
    }
    for (qsizetype i = at; i < at + 6; ++i) {
        if (!isHexDigit(text[i])) {
            return -1;
        }
    }
    if (at + 6 < size && isNameCharacter(text[at + 6])) {
        return -1;
    }
    return at;
}

}  // namespace

QString PaneMarkupForQt(const QString& html) {
    const QChar* text = html.constData();
    const qsizetype size = html.size();
    QString out;
    qsizetype copied = 0;
    bool inTag = false;
    for (qsizetype at = 0; at < size; ++at) {
        const QChar c = text[at];
        if (c == QLatin1Char('<')) {
            inTag = true;
        } else if (c == QLatin1Char('>')) {
            inTag = false;
        } else if (inTag && (c == QLatin1Char('r') || c == QLatin1Char('R')) &&
                   endsWithColorAt(text, at)) {
            const qsizetype hex = bareHexAfter(text, size, at);
            if (hex >= 0) {
                if (out.isNull()) {
                    out.reserve(size + 8);
                }
                out.append(text + copied, hex - copied);
                out += QLatin1Char('#');
                copied = hex;
                at = hex + 5;
            }
        }
    }
    if (out.isNull()) {
        return html;
    }
    out.append(text + copied, size - copied);
    return out;
}

}  // namespace tavren
