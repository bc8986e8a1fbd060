#pragma once

#include <QString>
#include <QTime>
#include <array>
#include <functional>

#include "config/WinColor.h"
#include "render/LineOptions.h"
#include "render/SmileyCodes.h"
#include "render/TextStyle.h"

namespace tavren {

// Turns one chat line (sender label, message, colours, size, bold flag) into the one paragraph
// of markup a conversation pane shows. The markup is fixed to the byte: other clients' panes,
// logs and tests compare it as text. Text is never escaped: what a sender types as markup
// reaches the pane as markup (the pane makes sure such markup can neither run nor fetch
// anything).
class ChatLineFormatter {
  public:
    // Rooms stamp "[3:07:09pm]" in a small font; private panes "|3:07:09 PM|" in the line's
    // size; tables carry no time at all.
    enum class Variant { Room, Private, Table };

    explicit ChatLineFormatter(LineOptions options = {});

    void setOptions(LineOptions options);
    const LineOptions& options() const { return options_; }
    // Where the time stamps come from: the local wall clock unless a test fixes it.
    void setClock(std::function<QTime()> clock);

    // The paragraph for one line. `text` is rewritten in place: afterwards it holds the message
    // with its smiley codes replaced by pictures (when smileys are on), which is what callers
    // keep or echo. `label` (usually "Name:") is shown as it stands.
    QString formatLine(Variant variant, const QString& label, QString& text, WinColor nameColor,
                       WinColor textColor, bool boldText, int size,
                       const TextStyle& style = {}) const;

    // Replaces every smiley code in `text` by its picture, with the same result as replacing
    // each code everywhere in turn: the two-digit numbers ";10" .. ";53" first (so ";1" cannot
    // eat the start of ";12"), then ";1" .. ";9", then the emoticons in their fixed order.
    // Works whatever the smileys option says.
    void substituteSmileys(QString& text) const;
    // Turns every space-separated word that starts with "http://", "www.", "ftp://", "mailto:"
    // or "https://" (any letter case) into a link, and ends every word, the last included,
    // with one space.
    static QString linkify(const QString& text);
    // "file:///" + data root + "\smiles\1NN.gif", every space written as "%20".
    QString smileyUrl(int number) const;
    // The image element a code is replaced by.
    QString smileyImage(int number) const;

  private:
    void rebuildSmileyImages();
    void substituteLiterally(QString& text) const;
    void appendTimeElement(QString& line, Variant variant, int size) const;
    void appendNameElement(QString& line, const QString& label, const QString& nameHex,
                           const QString& sizeText) const;
    static void appendLinkified(QString& out, const QString& text);
    static void appendMessageElement(QString& out, const QString& text, const QString& textHex,
                                     const QString& sizeText, bool boldText,
                                     const TextStyle& style);

    LineOptions options_;
    std::function<QTime()> clock_;
    // Indexed by picture number; [0] stays empty.
    std::array<QString, SmileyCodes::Last + 1> images_;
    // True when a picture's own markup holds a code (a data root with ";1" or ":-)" in it):
    // then later passes would rewrite earlier pictures, and only literal passes give the
    // right result.
    bool imagesHoldCodes_ = false;
    // Most lines arrive within the same second as the one before: keep the last stamps.
    mutable QTime stampedTime_;
    mutable QString roomStamp_;
    mutable QString paneStamp_;
};

}  // namespace tavren
