#pragma once

// The chat-line formatter written the plain way: every smiley code replaced everywhere in a
// pass of its own (69 passes), the text split into words and joined again, colours through
// their hex text. Time stamps use the same functions as the real formatter (their own tests
// pin them down), so that the benchmark compares the text work. The tests hold ChatLineFormatter to
// it byte for byte, and the benchmark measures against it.

#include <QString>
#include <QStringList>
#include <QTime>
#include <functional>
#include <utility>
#include <vector>

#include "render/ChatLineFormatter.h"
#include "render/ChatTime.h"
#include "render/LineOptions.h"

namespace tavren::plain {

inline QString colorHex(WinColor color, const QString& padding) {
    const QString hex = QString::number(color, 16).toUpper();
    const QString last6 = (padding + hex).right(6);
    return last6.mid(4, 2) + last6.mid(2, 2) + last6.mid(0, 2);
}

inline QString smileyImage(const LineOptions& options, int number) {
    QString path = "file:///" + options.dataRoot + "\\smiles\\1" +
                   QString::number(number).rightJustified(2, '0') + ".gif";
    path.replace(" ", "%20");
    return "<img border='0' src='" + path + "'>";
}

// The 69 codes in the order of their passes, each with its picture number.
inline const std::vector<std::pair<QString, int>>& smileyPasses() {
    static const std::vector<std::pair<QString, int>> passes = [] {
        std::vector<std::pair<QString, int>> list;
        for (int n = 10; n <= 53; ++n) {
            list.emplace_back(";" + QString::number(n), n);
        }
        for (int n = 1; n <= 9; ++n) {
            list.emplace_back(";" + QString::number(n), n);
        }
        const std::pair<const char*, int> emoticons[] = {
            {":-)", 49},  {"=-o", 47},  {"=-O", 47}, {":-\\", 39}, {":-(", 38}, {":-*", 28},
            {";-)", 53},  {"[=)", 43},  {":-x", 31}, {":-X", 31},  {":-p", 50}, {":-P", 50},
            {"o:-)", 52}, {"O:-)", 52}, {":-d", 24}, {":-D", 24}};
        for (const auto& [code, number] : emoticons) {
            list.emplace_back(QString::fromLatin1(code), number);
        }
        return list;
    }();
    return passes;
}

// Each code replaced everywhere, one pass after another. `images` holds the picture markup by
// number.
inline void substituteSmileys(const std::vector<QString>& images, QString& text) {
    for (const auto& [code, number] : smileyPasses()) {
        text.replace(code, images[std::size_t(number)]);
    }
}

inline std::vector<QString> smileyImages(const LineOptions& options) {
    std::vector<QString> images(54);
    for (int n = 1; n <= 53; ++n) {
        images[std::size_t(n)] = smileyImage(options, n);
    }
    return images;
}

inline void substituteSmileys(const LineOptions& options, QString& text) {
    substituteSmileys(smileyImages(options), text);
}

inline QString linkify(const QString& text) {
    QString joined;
    for (const QString& word : text.split(' ')) {
        const QString lower = word.toLower();
        if (lower.startsWith("http://") || lower.startsWith("ftp://") ||
            lower.startsWith("mailto:") || lower.startsWith("https://")) {
            joined += "<a target= _blank  href= " + word + " >" + word + "</a>";
        } else if (lower.startsWith("www.")) {
            joined += "<a target= _blank  href= http://" + word + " >" + word + "</a>";
        } else {
            joined += word;
        }
        joined += " ";
    }
    return joined;
}

class PlainLineFormatter {
  public:
    using Variant = ChatLineFormatter::Variant;

    PlainLineFormatter(LineOptions options, std::function<QTime()> clock)
        : options_(std::move(options)), clock_(std::move(clock)), images_(smileyImages(options_)) {}

    QString formatLine(Variant variant, const QString& label, QString& text, WinColor nameColor,
                       WinColor textColor, bool boldText, int size) const {
        const QString nameHex = colorHex(nameColor, "000000");
        const QString textHex = colorHex(textColor, "000000");
        const QString sizeText = QString::number(size);
        QString time;
        if (options_.timestamp) {
            if (variant == Variant::Room) {
                time = "<font face='Arial' size='1'>[" + RoomLineTime(clock_()) + "]</font>";
            } else {
                time = "<font face='Arial' size='" + sizeText + "'>|" + PaneLineTime(clock_()) +
                       "|</font>";
            }
        }
        QString name = "<font color='" + nameHex + "' face='Arial' size='" + sizeText;
        if (options_.boldNames && options_.underlineNames) {
            name += "'><b><u>" + label + "</u></b></font>";
        } else if (options_.boldNames) {
            name += "'><b>" + label + "</b></font>";
        } else if (options_.underlineNames) {
            name += "'><u>" + label + "</u></font>";
        } else {
            name += "'>" + label + "</font>";
        }
        if (options_.smileys) {
            substituteSmileys(images_, text);
        }
        const QString linked = linkify(text);
        QString message = "<font color='" + textHex + "' face='Arial' size='" + sizeText + "'>";
        message += boldText ? "<b>" + linked + "</b></font>" : linked + "</font>";
        if (variant == Variant::Private) {
            message.replace("\r\n", "<br>", Qt::CaseInsensitive);
        }
        const QString paragraph =
            "<p style='text-indent: -20px; margin-right: 22px; margin-left: 22px; "
            "margin-top: 0; margin-bottom: 0;'>";
        if (variant == Variant::Table) {
            return paragraph + name + "&nbsp;&nbsp;" + message + "</p>";
        }
        return paragraph + time + "&nbsp;" + name + "&nbsp;&nbsp;" + message + "</p>";
    }

  private:
    LineOptions options_;
    std::function<QTime()> clock_;
    std::vector<QString> images_;
};

}  // namespace tavren::plain
