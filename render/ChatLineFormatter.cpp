#include "render/ChatLineFormatter.h"

#include "render/ChatTime.h"
#include "render/ColorText.h"

namespace tavren {

namespace {

const QLatin1String kParagraph(
    "<p style='text-indent: -20px; margin-right: 22px; margin-left: 22px; margin-top: 0; "
    "margin-bottom: 0;'>");

bool isAsciiDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

// The picture a code starting at `at` stands for, with the code's length; 0 when no code
// starts there. Only the codes a sequence of replace-all passes can still match count: the
// halo faces "o:-)" and "O:-)" are gone by the time their pass runs, because the smile inside
// them was replaced first.
int smileyAt(const QChar* text, qsizetype at, qsizetype size, qsizetype& length) {
    const qsizetype left = size - at;
    const char16_t first = text[at].unicode();
    const char16_t second = left > 1 ? text[at + 1].unicode() : u'\0';
    const char16_t third = left > 2 ? text[at + 2].unicode() : u'\0';
    switch (first) {
        case u';':
            if (left > 2 && isAsciiDigit(text[at + 1]) && isAsciiDigit(text[at + 2])) {
                const int number = (second - u'0') * 10 + (third - u'0');
                if (number >= 10 && number <= SmileyCodes::Last) {
                    length = 3;
                    return number;
                }
            }
            if (second >= u'1' && second <= u'9') {
                length = 2;
                return second - u'0';
            }
            if (second == u'-' && third == u')') {
                length = 3;
                return 53;
            }
            return 0;
        case u':':
            if (second != u'-') {
                return 0;
            }
            length = 3;
            switch (third) {
                case u')':
                    return 49;
                case u'\\':
                    return 39;
                case u'(':
                    return 38;
                case u'*':
                    return 28;
                case u'x':
                case u'X':
                    return 31;
                case u'p':
                case u'P':
                    return 50;
                case u'd':
                case u'D':
                    return 24;
                default:
                    return 0;
            }
        case u'=':
            if (second == u'-' && (third == u'o' || third == u'O')) {
                length = 3;
                return 47;
            }
            return 0;
        case u'[':
            if (second == u'=' && third == u')') {
                length = 3;
                return 43;
            }
            return 0;
        default:
            return 0;
    }
}

enum class LinkKind { None, Plain, Web };

// The prefix test is on a lower-cased copy of the word; the prefixes are plain ASCII, so
// folding ASCII letters alone gives the same answer.
bool startsWithLower(QStringView word, QLatin1String prefix) {
    if (word.size() < prefix.size()) {
        return false;
    }
    for (qsizetype i = 0; i < prefix.size(); ++i) {
        char16_t c = word[i].unicode();
        if (c >= u'A' && c <= u'Z') {
            c = char16_t(c + (u'a' - u'A'));
        }
        if (c != char16_t(prefix[i].unicode())) {
            return false;
        }
    }
    return true;
}

LinkKind linkKind(QStringView word) {
    if (word.size() < 4) {
        return LinkKind::None;
    }
    // Most words start with none of the prefixes' letters: answer those at once.
    switch (word[0].unicode()) {
        case u'h':
        case u'H':
        case u'w':
        case u'W':
        case u'f':
        case u'F':
        case u'm':
        case u'M':
            break;
        default:
            return LinkKind::None;
    }
    if (startsWithLower(word, QLatin1String("http://"))) {
        return LinkKind::Plain;
    }
    if (startsWithLower(word, QLatin1String("www."))) {
        return LinkKind::Web;
    }
    if (startsWithLower(word, QLatin1String("ftp://")) ||
        startsWithLower(word, QLatin1String("mailto:")) ||
        startsWithLower(word, QLatin1String("https://"))) {
        return LinkKind::Plain;
    }
    return LinkKind::None;
}

QString escapedFace(const QString& face) {
    QString escaped = face;
    escaped.replace(QLatin1Char('\''), QLatin1String("&#39;"));
    return escaped;
}

}  // namespace

ChatLineFormatter::ChatLineFormatter(LineOptions options)
    : options_(std::move(options)), clock_([] { return QTime::currentTime(); }) {
    rebuildSmileyImages();
}

void ChatLineFormatter::setOptions(LineOptions options) {
    const bool newRoot = options.dataRoot != options_.dataRoot;
    options_ = std::move(options);
    if (newRoot) {
        rebuildSmileyImages();
    }
}

void ChatLineFormatter::setClock(std::function<QTime()> clock) {
    clock_ = std::move(clock);
    stampedTime_ = QTime();
}

QString ChatLineFormatter::smileyUrl(int number) const {
    QString url = QLatin1String("file:///") + options_.dataRoot + QLatin1String("\\smiles\\") +
                  SmileyCodes::fileName(number);
    url.replace(QLatin1Char(' '), QLatin1String("%20"));
    return url;
}

QString ChatLineFormatter::smileyImage(int number) const {
    return QLatin1String("<img border='0' src='") + smileyUrl(number) + QLatin1String("'>");
}

void ChatLineFormatter::rebuildSmileyImages() {
    imagesHoldCodes_ = false;
    for (int number = SmileyCodes::First; number <= SmileyCodes::Last; ++number) {
        images_[std::size_t(number)] = smileyImage(number);
    }
    // No code holds "<" or ">", so a code can never reach across the edge of a picture's
    // markup; only a code lying wholly inside one would let the passes interfere.
    for (int number = SmileyCodes::First; number <= SmileyCodes::Last; ++number) {
        const QString& image = images_[std::size_t(number)];
        for (int code = SmileyCodes::First; code <= SmileyCodes::Last; ++code) {
            imagesHoldCodes_ = imagesHoldCodes_ || image.contains(SmileyCodes::numberedCode(code));
        }
        for (const SmileyCodes::Emoticon& emoticon : SmileyCodes::emoticons()) {
            imagesHoldCodes_ = imagesHoldCodes_ || image.contains(emoticon.code);
        }
    }
}

void ChatLineFormatter::substituteLiterally(QString& text) const {
    for (int number = 10; number <= SmileyCodes::Last; ++number) {
        text.replace(SmileyCodes::numberedCode(number), images_[std::size_t(number)]);
    }
    for (int number = 1; number <= 9; ++number) {
        text.replace(SmileyCodes::numberedCode(number), images_[std::size_t(number)]);
    }
    for (const SmileyCodes::Emoticon& emoticon : SmileyCodes::emoticons()) {
        text.replace(emoticon.code, images_[std::size_t(emoticon.number)]);
    }
}

void ChatLineFormatter::substituteSmileys(QString& text) const {
    if (imagesHoldCodes_) {
        substituteLiterally(text);
        return;
    }
    // With no overlap left between live codes (a two-digit number wins over the one-digit
    // number at the same ";", and the halo faces never match), one left-to-right scan finds
    // exactly the occurrences the passes would replace.
    const QChar* data = text.constData();
    const qsizetype size = text.size();
    QString out;
    qsizetype copied = 0;
    for (qsizetype at = 0; at < size;) {
        qsizetype length = 0;
        const int number = smileyAt(data, at, size, length);
        if (number == 0) {
            ++at;
            continue;
        }
        if (out.isNull()) {
            out.reserve(size + 4 * images_[1].size());
        }
        out.append(data + copied, at - copied);
        out += images_[std::size_t(number)];
        at += length;
        copied = at;
    }
    if (!out.isNull()) {
        out.append(data + copied, size - copied);
        text = std::move(out);
    }
}

QString ChatLineFormatter::linkify(const QString& text) {
    QString out;
    out.reserve(text.size() + 1);
    appendLinkified(out, text);
    return out;
}

void ChatLineFormatter::appendLinkified(QString& out, const QString& text) {
    const QStringView all(text);
    qsizetype start = 0;
    while (true) {
        qsizetype end = all.indexOf(QLatin1Char(' '), start);
        if (end < 0) {
            end = all.size();
        }
        const QStringView word = all.sliced(start, end - start);
        const LinkKind kind = linkKind(word);
        if (kind == LinkKind::None) {
            out += word;
        } else {
            out += QLatin1String("<a target= _blank  href= ");
            if (kind == LinkKind::Web) {
                out += QLatin1String("http://");
            }
            out += word;
            out += QLatin1String(" >");
            out += word;
            out += QLatin1String("</a>");
        }
        out += QLatin1Char(' ');
        if (end == all.size()) {
            return;
        }
        start = end + 1;
    }
}

void ChatLineFormatter::appendTimeElement(QString& line, Variant variant, int size) const {
    const QTime now = clock_ ? clock_() : QTime::currentTime();
    if (now.hour() != stampedTime_.hour() || now.minute() != stampedTime_.minute() ||
        now.second() != stampedTime_.second() || !stampedTime_.isValid()) {
        stampedTime_ = now;
        roomStamp_ = RoomLineTime(now);
        paneStamp_ = PaneLineTime(now);
    }
    if (variant == Variant::Room) {
        line += QLatin1String("<font face='Arial' size='1'>[");
        line += roomStamp_;
        line += QLatin1String("]</font>");
    } else {
        line += QLatin1String("<font face='Arial' size='");
        line += QString::number(size);
        line += QLatin1String("'>|");
        line += paneStamp_;
        line += QLatin1String("|</font>");
    }
}

void ChatLineFormatter::appendNameElement(QString& line, const QString& label,
                                          const QString& nameHex, const QString& sizeText) const {
    line += QLatin1String("<font color='");
    line += nameHex;
    line += QLatin1String("' face='Arial' size='");
    line += sizeText;
    line += QLatin1String("'>");
    if (options_.boldNames) {
        line += QLatin1String("<b>");
    }
    if (options_.underlineNames) {
        line += QLatin1String("<u>");
    }
    line += label;
    if (options_.underlineNames) {
        line += QLatin1String("</u>");
    }
    if (options_.boldNames) {
        line += QLatin1String("</b>");
    }
    line += QLatin1String("</font>");
}

void ChatLineFormatter::appendMessageElement(QString& out, const QString& text,
                                             const QString& textHex, const QString& sizeText,
                                             bool boldText, const TextStyle& style) {
    out += QLatin1String("<font color='");
    out += textHex;
    out += QLatin1String("' face='Arial' size='");
    out += sizeText;
    out += QLatin1String("'>");
    if (boldText) {
        out += QLatin1String("<b>");
    }
    if (!style.face.isEmpty()) {
        out += QLatin1String("<font face='");
        out += escapedFace(style.face);
        out += QLatin1String("'>");
    }
    if (style.italic) {
        out += QLatin1String("<i>");
    }
    if (style.underline) {
        out += QLatin1String("<u>");
    }
    appendLinkified(out, text);
    if (style.underline) {
        out += QLatin1String("</u>");
    }
    if (style.italic) {
        out += QLatin1String("</i>");
    }
    if (!style.face.isEmpty()) {
        out += QLatin1String("</font>");
    }
    if (boldText) {
        out += QLatin1String("</b>");
    }
    out += QLatin1String("</font>");
}

QString ChatLineFormatter::formatLine(Variant variant, const QString& label, QString& text,
                                      WinColor nameColor, WinColor textColor, bool boldText,
                                      int size, const TextStyle& style) const {
    const QString nameHex = ColorToHex(nameColor);
    const QString textHex = ColorToHex(textColor);
    const QString sizeText = QString::number(size);

    QString line;
    line.reserve(kParagraph.size() + 200 + label.size() + 2 * text.size());
    line += kParagraph;
    if (variant != Variant::Table) {
        if (options_.timestamp) {
            appendTimeElement(line, variant, size);
        }
        line += QLatin1String("&nbsp;");
    }
    appendNameElement(line, label, nameHex, sizeText);
    line += QLatin1String("&nbsp;&nbsp;");

    if (options_.smileys) {
        substituteSmileys(text);
    }
    if (variant == Variant::Private) {
        // Private lines keep the sender's line breaks as breaks.
        QString message;
        appendMessageElement(message, text, textHex, sizeText, boldText, style);
        message.replace(QLatin1String("\r\n"), QLatin1String("<br>"), Qt::CaseInsensitive);
        line += message;
    } else {
        appendMessageElement(line, text, textHex, sizeText, boldText, style);
    }
    line += QLatin1String("</p>");
    return line;
}

}  // namespace tavren
