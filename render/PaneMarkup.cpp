#include "render/PaneMarkup.h"

namespace tavren {

namespace {

constexpr int kMaxTables = 3;

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

enum class TagKind { Other, Table, TablePart };

// What the tag opening at `at` ("<" then maybe blanks and "/") is. Any "<table" counts, even
// one Qt would read as text: counting too many tables only drops a tag too early, never lets a
// nested table through.
TagKind tagKindAt(const QChar* text, qsizetype size, qsizetype at) {
    qsizetype name = at + 1;
    skipBlanks(text, size, name);
    if (name < size && text[name] == QLatin1Char('/')) {
        ++name;
        skipBlanks(text, size, name);
    }
    qsizetype end = name;
    while (end < size && text[end].isLetterOrNumber()) {
        ++end;
    }
    const QStringView word(text + name, end - name);
    if (word.size() < 2 || word.size() > 8) {
        return TagKind::Other;
    }
    if (word.compare(QLatin1String("table"), Qt::CaseInsensitive) == 0) {
        return TagKind::Table;
    }
    static const QLatin1String parts[] = {
        QLatin1String("tr"),      QLatin1String("td"),    QLatin1String("th"),
        QLatin1String("thead"),   QLatin1String("tbody"), QLatin1String("tfoot"),
        QLatin1String("caption"), QLatin1String("col"),   QLatin1String("colgroup")};
    for (const QLatin1String& part : parts) {
        if (word.compare(part, Qt::CaseInsensitive) == 0) {
            return TagKind::TablePart;
        }
    }
    return TagKind::Other;
}

class MarkupAdapter {
  public:
    explicit MarkupAdapter(const QString& html)
        : html_(html), text_(html.constData()), size_(html.size()) {}

    QString run() {
        bool inTag = false;
        for (qsizetype at = 0; at < size_; ++at) {
            const QChar c = text_[at];
            if (c == QLatin1Char('<')) {
                inTag = true;
                if (dropsTagAt(at)) {
                    at = skipTag(at);
                    inTag = false;
                }
            } else if (c == QLatin1Char('>')) {
                inTag = false;
            } else if (inTag && (c == QLatin1Char('r') || c == QLatin1Char('R')) &&
                       endsWithColorAt(text_, at)) {
                const qsizetype hex = bareHexAfter(text_, size_, at);
                if (hex >= 0) {
                    copyUpTo(hex);
                    out_ += QLatin1Char('#');
                    at = hex + 5;
                }
            }
        }
        if (out_.isNull()) {
            return html_;
        }
        copyUpTo(size_);
        return out_;
    }

  private:
    bool dropsTagAt(qsizetype at) {
        const TagKind kind = tagKindAt(text_, size_, at);
        if (kind == TagKind::Table) {
            const bool closing = isClosing(at);
            if (!closing) {
                ++tables_;
            }
            return tables_ > kMaxTables;
        }
        return kind == TagKind::TablePart && tables_ > kMaxTables;
    }

    bool isClosing(qsizetype at) const {
        qsizetype next = at + 1;
        skipBlanks(text_, size_, next);
        return next < size_ && text_[next] == QLatin1Char('/');
    }

    // Drops the tag at `at` through its ">"; returns where the scan goes on.
    qsizetype skipTag(qsizetype at) {
        copyUpTo(at);
        qsizetype end = at;
        while (end < size_ && text_[end] != QLatin1Char('>')) {
            ++end;
        }
        copied_ = end < size_ ? end + 1 : size_;
        return copied_ - 1;
    }

    void copyUpTo(qsizetype end) {
        if (out_.isNull()) {
            out_.reserve(size_ + 8);
        }
        out_.append(text_ + copied_, end - copied_);
        copied_ = end;
    }

    const QString& html_;
    const QChar* text_;
    qsizetype size_;
    QString out_;
    qsizetype copied_ = 0;
    int tables_ = 0;
};

}  // namespace

QString PaneMarkupForQt(const QString& html) {
    return MarkupAdapter(html).run();
}

}  // namespace tavren
