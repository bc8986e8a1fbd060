#pragma once

#include <QHash>
#include <QImage>
#include <QString>
#include <QTextBrowser>
#include <deque>
#include <functional>
#include <vector>

#include "render/PaneMarkupParser.h"
#include "render/SmileyFiles.h"

namespace tavren {

class PaneImageHandler;

// A conversation pane: the chat lines of one room, private conversation or table as rich text.
//
// It offers what the line formatters need from a browser: start an empty page (navigate),
// append markup at the end (AddChat), follow new lines only while the reader is near the
// bottom, and keep the document bounded. The appended markup is kept as it came (bodyHtml);
// the widget shows it through Qt's rich-text engine, adapted where that engine differs.
//
// The markup is other people's and unescaped, so the pane never runs anything and never
// fetches anything: pictures come only from the data root's smiley folder (and from the lookup
// its owner vouches for: files received over a direct connection), links open in the user's
// browser (http, https, ftp, mailto) and never in the pane.
class ChatPane : public QTextBrowser {
    Q_OBJECT

  public:
    // When the appended markup grows past TrimAbove characters, only its last TrimTo
    // characters are kept (the cut may fall inside a tag; what is left of it shows as text).
    static constexpr qsizetype TrimAbove = 180000;
    static constexpr qsizetype TrimTo = 125000;
    // A new line is followed when r = (pane height in twips) / (distance from the view's top
    // to the end of the document) is at least this; at the bottom r is about 15.
    static constexpr int DefaultScrollThreshold = 13;
    static constexpr int TwipsPerPixel = 15;

    explicit ChatPane(QWidget* parent = nullptr);
    ~ChatPane() override;

    // The data root whose "smiles" folder the pane may show pictures from
    // (DataRoot::path() unless set).
    void setDataRoot(const QString& dataRoot);

    // Empties the pane and takes the background (and a table page's scroll bar colours) of
    // the given "about:" page.
    void navigate(const QString& aboutPage);

    // Appends one paragraph of markup. Lines appended in one turn of the event loop are shown
    // together when the loop comes round (or at flush()); bodyHtml() has them at once. When
    // lines come faster than they can be laid out, each turn shows what fits in about
    // FlushBudgetMicroseconds and leaves the rest to the next, so the interface never stands
    // still for long.
    void AddChat(const QString& html);
    // Shows everything still waiting, now.
    void flush();
    // Whether the document shows all of bodyHtml().
    bool isUpToDate() const {
        return pendingEnds_.empty() && (shown_.empty() || shownStart_ >= bodyStart_);
    }

    static constexpr double FlushBudgetMicroseconds = 16000;

    // 16 - AutoScroll.
    void setScrollThreshold(int threshold) { threshold_ = threshold; }
    int scrollThreshold() const { return threshold_; }
    // r of the scroll rule as things stand; 0 when it cannot be worked out.
    int scrollRatio() const;

    QString bodyHtml() const { return body_; }

    // What opening a clicked link does; QDesktopServices::openUrl unless replaced.
    void setLinkOpener(std::function<void(const QUrl&)> opener) { linkOpener_ = std::move(opener); }
    static bool isOpenableLink(const QUrl& url);
    // Links that are no web links (a received file's) go here; nothing opens them unless set.
    void setLocalLinkOpener(std::function<void(const QUrl&)> opener) {
        localLinkOpener_ = std::move(opener);
    }
    // Pictures beyond the smileys (files received over a direct connection): asked for an
    // address the smiley folder does not hold; a null image refuses it. Not cached here, since
    // a file received again under the same name is a new picture.
    void setPictureLookup(std::function<QImage(const QString&)> lookup) {
        pictureLookup_ = std::move(lookup);
        viewport()->update();
    }

    // Only smiley files load; every other request gets empty data (never a null answer, on
    // which QTextDocument would go and read a local file itself).
    QVariant loadResource(int type, const QUrl& name) override;

  private:
    // One appended piece as shown in the document: where its markup ends in the stream of
    // everything appended, and how many document positions it takes, counting the paragraph
    // break after it when another piece follows.
    struct ShownPiece {
        qint64 markupEnd;
        int length;
    };

    qint64 appendedEnd() const { return bodyStart_ + body_.size(); }
    void scheduleFlush();
    void flushInTurn();
    void showWaiting(qint64 characterBudget);
    void dropTrimmedPieces(bool following);
    void showPieces(qint64 from, const std::vector<qint64>& ends);
    void rebuildDocument();
    bool documentMatchesPieces() const;
    void resetDocument();
    void scrollToBottom();
    void openLink(const QUrl& url);
    QImage pictureFor(const QString& source);
    void applyPage(const QString& page);

    QString dataRoot_;
    SmileyFiles smileys_;
    QHash<QString, QImage> pictures_;
    PaneMarkupParser parser_;
    PaneImageHandler* imageHandler_;
    std::function<void(const QUrl&)> linkOpener_;
    std::function<void(const QUrl&)> localLinkOpener_;
    std::function<QImage(const QString&)> pictureLookup_;

    QString body_;
    qint64 bodyStart_ = 0;   // offset of body_[0] in the stream of everything appended
    qint64 shownStart_ = 0;  // where the first shown piece starts in that stream
    std::deque<ShownPiece> shown_;
    std::vector<qint64> pendingEnds_;  // ends of the pieces appended since the last flush
    bool flushScheduled_ = false;

    int threshold_ = DefaultScrollThreshold;
    bool followBottom_ = true;
    qreal documentMargin_ = 4;
    // Measured cost of showing markup, for the per-turn budget.
    double microsecondsPerCharacter_ = 0.25;
};

}  // namespace tavren
