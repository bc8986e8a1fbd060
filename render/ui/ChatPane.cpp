#include "render/ui/ChatPane.h"

#include <QAbstractTextDocumentLayout>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <limits>

#include "core/DataRoot.h"
#include "render/ui/PaneImageHandler.h"

namespace tavren {

namespace {

QString attributeValue(const QString& page, const QString& name) {
    const QRegularExpression pattern(name + QLatin1String(R"(\s*=\s*['"]?([#\w]+))"),
                                     QRegularExpression::CaseInsensitiveOption);
    return pattern.match(page).captured(1);
}

// The scroll bar colours of a page's style ("scrollbar-face-color: '#445038'") as a style
// sheet for Qt's scroll bar; empty when the page has none.
QString scrollBarStyle(const QString& page) {
    static const QRegularExpression pattern(
        QStringLiteral(R"(scrollbar-([a-z0-9-]+)-color\s*:\s*'?([#\w]+))"),
        QRegularExpression::CaseInsensitiveOption);
    QHash<QString, QString> colors;
    for (auto match = pattern.globalMatch(page); match.hasNext();) {
        const auto found = match.next();
        const QColor color = QColor::fromString(found.captured(2));
        if (color.isValid()) {
            colors.insert(found.captured(1).toLower(), color.name());
        }
    }
    if (colors.isEmpty()) {
        return {};
    }
    const auto color = [&](const char* part, const char* fallback) {
        return colors.value(QLatin1String(part), QLatin1String(fallback));
    };
    return QStringLiteral(
               "QScrollBar:vertical { background: %1; width: 16px; margin: 16px 0 16px 0; }"
               "QScrollBar::handle:vertical { background: %2; min-height: 20px;"
               " border: 1px solid %3; border-right-color: %4; border-bottom-color: %4; }"
               "QScrollBar::add-line:vertical { background: %5; height: 16px;"
               " subcontrol-position: bottom; subcontrol-origin: margin; }"
               "QScrollBar::sub-line:vertical { background: %5; height: 16px;"
               " subcontrol-position: top; subcontrol-origin: margin; }"
               "QScrollBar::up-arrow:vertical, QScrollBar::down-arrow:vertical"
               " { width: 6px; height: 6px; background: %6; }"
               "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical"
               " { background: none; }")
        .arg(color("track", "white"), color("face", "gray"), color("highlight", "silver"),
             color("shadow", "black"), color("base", "black"), color("arrow", "white"));
}

}  // namespace

ChatPane::ChatPane(QWidget* parent)
    : QTextBrowser(parent),
      dataRoot_(DataRoot::path()),
      smileys_(dataRoot_),
      imageHandler_(
          new PaneImageHandler([this](const QString& source) { return pictureFor(source); }, this)),
      linkOpener_([](const QUrl& url) { QDesktopServices::openUrl(url); }) {
    setOpenLinks(false);
    setOpenExternalLinks(false);
    setUndoRedoEnabled(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    resetDocument();
    connect(this, &QTextBrowser::anchorClicked, this, &ChatPane::openLink);
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, [this] {
        if (followBottom_) {
            scrollToBottom();
        }
    });
    // The reader moved the view: stop holding it at the bottom until the next line decides.
    connect(verticalScrollBar(), &QScrollBar::actionTriggered, this,
            [this] { followBottom_ = false; });
}

ChatPane::~ChatPane() = default;

void ChatPane::setDataRoot(const QString& dataRoot) {
    dataRoot_ = dataRoot;
    smileys_ = SmileyFiles(dataRoot);
    pictures_.clear();
    viewport()->update();
}

void ChatPane::resetDocument() {
    document()->clear();
    document()->setUndoRedoEnabled(false);
    document()->setDocumentMargin(documentMargin_);
    // Registered again after every clear, in case the layout was replaced.
    document()->documentLayout()->registerHandler(QTextFormat::ImageObject, imageHandler_);
}

void ChatPane::navigate(const QString& aboutPage) {
    const QString page = aboutPage.startsWith(QLatin1String("about:"), Qt::CaseInsensitive)
                             ? aboutPage.mid(6)
                             : aboutPage;
    body_.clear();
    bodyStart_ = 0;
    shownStart_ = 0;
    shown_.clear();
    pendingEnds_.clear();
    followBottom_ = true;
    applyPage(page);
    resetDocument();
}

void ChatPane::applyPage(const QString& page) {
    const QColor background = QColor::fromString(attributeValue(page, QStringLiteral("bgcolor")));
    QPalette colors = palette();
    colors.setColor(QPalette::Base, background.isValid() ? background : QColor(Qt::white));
    setPalette(colors);

    bool marginGiven = false;
    const int margin = attributeValue(page, QStringLiteral("leftmargin")).toInt(&marginGiven);
    documentMargin_ = marginGiven ? qMax(0, margin) : 4;

    setHorizontalScrollBarPolicy(
        page.contains(QLatin1String("overflow-x:hidden"), Qt::CaseInsensitive)
            ? Qt::ScrollBarAlwaysOff
            : Qt::ScrollBarAsNeeded);
    verticalScrollBar()->setStyleSheet(scrollBarStyle(page));
}

void ChatPane::AddChat(const QString& html) {
    body_ += html;
    pendingEnds_.push_back(appendedEnd());
    if (body_.size() > TrimAbove) {
        const qsizetype cut = body_.size() - TrimTo;
        body_.remove(0, cut);
        bodyStart_ += cut;
    }
    scheduleFlush();
}

void ChatPane::scheduleFlush() {
    if (!flushScheduled_) {
        flushScheduled_ = true;
        QMetaObject::invokeMethod(this, &ChatPane::flushInTurn, Qt::QueuedConnection);
    }
}

int ChatPane::scrollRatio() const {
    const qint64 twips = qint64(height()) * TwipsPerPixel;
    const qreal documentHeight = document()->documentLayout()->documentSize().height();
    const qint64 scrollHeight = qRound64(qMax(documentHeight, qreal(viewport()->height())));
    const qint64 distance = scrollHeight - verticalScrollBar()->value();
    return distance > 0 ? int(twips / distance) : 0;
}

void ChatPane::flush() {
    showWaiting(std::numeric_limits<qint64>::max());
}

void ChatPane::flushInTurn() {
    flushScheduled_ = false;
    // Keep each turn of the event loop short however fast lines come: show as much as fits in
    // the time budget at the speed measured so far, the rest in the next turn. Lines that are
    // cut away meanwhile are then never laid out at all.
    showWaiting(qMax<qint64>(1, qint64(FlushBudgetMicroseconds / microsecondsPerCharacter_)));
    if (!pendingEnds_.empty()) {
        scheduleFlush();
    }
}

void ChatPane::showWaiting(qint64 characterBudget) {
    const bool trimmed = !shown_.empty() && shownStart_ < bodyStart_;
    if (!trimmed && pendingEnds_.empty()) {
        return;
    }
    QElapsedTimer timer;
    timer.start();
    // Measured once for the whole batch: nothing in the view changes between the appends of
    // one turn, so each of them would have measured the same.
    const bool following = scrollRatio() >= threshold_;
    followBottom_ = following;
    if (trimmed) {
        dropTrimmedPieces(following);
    }
    qint64 shownCharacters = 0;
    if (!pendingEnds_.empty()) {
        const qint64 from =
            shown_.empty() ? qMax(shownStart_, bodyStart_) : shown_.back().markupEnd;
        // The pieces that fit in the budget (at least one), skipping those already cut away.
        std::size_t count = 0;
        qint64 start = from;
        while (count < pendingEnds_.size() && shownCharacters < characterBudget) {
            const qint64 end = pendingEnds_[count++];
            shownCharacters += qMax<qint64>(0, end - qMax(start, bodyStart_));
            start = end;
        }
        const std::vector<qint64> ends(pendingEnds_.begin(),
                                       pendingEnds_.begin() + qsizetype(count));
        pendingEnds_.erase(pendingEnds_.begin(), pendingEnds_.begin() + qsizetype(count));
        showPieces(from, ends);
    }
    if (!documentMatchesPieces()) {
        rebuildDocument();
    }
    if (following) {
        scrollToBottom();
    }
    if (shownCharacters > 1000) {
        const double measured = double(timer.nsecsElapsed()) / 1000.0 / double(shownCharacters);
        microsecondsPerCharacter_ = 0.5 * microsecondsPerCharacter_ + 0.5 * measured;
    }
}

void ChatPane::dropTrimmedPieces(bool following) {
    int removed = 0;
    qint64 start = shownStart_;
    while (!shown_.empty() && shown_.front().markupEnd <= bodyStart_) {
        removed += shown_.front().length;
        start = shown_.front().markupEnd;
        shown_.pop_front();
    }
    // The cut may fall inside a piece: what is left of it is shown again on its own.
    qint64 partialEnd = -1;
    if (!shown_.empty() && start < bodyStart_) {
        removed += shown_.front().length;
        partialEnd = shown_.front().markupEnd;
        shown_.pop_front();
    }
    const qreal heightBefore = document()->documentLayout()->documentSize().height();
    if (shown_.empty()) {
        resetDocument();
    } else {
        // Up to and including the break after the last removed piece: the next piece's first
        // paragraph keeps its own format.
        QTextCursor cursor(document());
        cursor.beginEditBlock();
        cursor.setPosition(removed, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
        cursor.endEditBlock();
    }
    shownStart_ = bodyStart_;
    if (partialEnd >= 0) {
        const QString rest = body_.left(partialEnd - bodyStart_);
        QTextCursor cursor(document());
        const int before = document()->characterCount();
        cursor.beginEditBlock();
        if (!shown_.empty()) {
            // An empty paragraph in front, with the format of the one that was first.
            cursor.insertBlock();
            cursor.setPosition(0);
        }
        cursor.insertFragment(parser_.parse(rest));
        cursor.endEditBlock();
        shown_.push_front({partialEnd, document()->characterCount() - before});
    } else if (!shown_.empty()) {
        shownStart_ = qMax(bodyStart_, start);
    }
    if (!following) {
        // Keep the lines the reader is looking at in place.
        const qreal removedHeight =
            heightBefore - document()->documentLayout()->documentSize().height();
        verticalScrollBar()->setValue(verticalScrollBar()->value() - qRound(removedHeight));
    }
}

void ChatPane::showPieces(qint64 from, const std::vector<qint64>& ends) {
    QTextCursor cursor(document());
    // One edit block: the document is laid out once for the whole batch. Opened before the
    // cursor moves, so that moving it does not lay out the last paragraph to find its x.
    cursor.beginEditBlock();
    cursor.movePosition(QTextCursor::End);
    qint64 start = from;
    for (const qint64 end : ends) {
        const qint64 shownFrom = qMax(start, bodyStart_);
        start = end;
        if (end <= shownFrom) {
            continue;  // cut away before it was ever shown
        }
        if (shown_.empty()) {
            shownStart_ = shownFrom;
        }
        const QTextDocumentFragment fragment =
            parser_.parse(body_.mid(shownFrom - bodyStart_, end - shownFrom));
        int before = document()->characterCount();
        if (!shown_.empty()) {
            cursor.insertBlock(QTextBlockFormat(), QTextCharFormat());
            shown_.back().length += 1;
            before += 1;
        }
        cursor.insertFragment(fragment);
        shown_.push_back({end, document()->characterCount() - before});
    }
    cursor.endEditBlock();
}

bool ChatPane::documentMatchesPieces() const {
    qint64 total = 0;
    for (const ShownPiece& piece : shown_) {
        total += piece.length;
    }
    return document()->characterCount() == total + 1;
}

void ChatPane::rebuildDocument() {
    // Only reached when Qt merged or split paragraphs in a way the bookkeeping did not expect
    // (odd markup such as stray table cells): show the kept markup again from scratch.
    std::vector<qint64> ends;
    for (const ShownPiece& piece : shown_) {
        if (piece.markupEnd > bodyStart_) {
            ends.push_back(piece.markupEnd);
        }
    }
    shown_.clear();
    resetDocument();
    showPieces(bodyStart_, ends);
    if (!documentMatchesPieces()) {
        // Still no match: keep one piece covering it all, so that trimming stays in step.
        shown_.clear();
        if (!ends.empty()) {
            shown_.push_back({ends.back(), document()->characterCount() - 1});
        }
        shownStart_ = bodyStart_;
    }
}

void ChatPane::scrollToBottom() {
    verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

bool ChatPane::isOpenableLink(const QUrl& url) {
    const QString scheme = url.scheme().toLower();
    return url.isValid() && (scheme == QLatin1String("http") || scheme == QLatin1String("https") ||
                             scheme == QLatin1String("ftp") || scheme == QLatin1String("mailto"));
}

void ChatPane::openLink(const QUrl& url) {
    if (isOpenableLink(url)) {
        if (linkOpener_) {
            linkOpener_(url);
        }
    } else if (localLinkOpener_) {
        localLinkOpener_(url);
    }
}

QImage ChatPane::pictureFor(const QString& source) {
    const auto known = pictures_.constFind(source);
    if (known != pictures_.constEnd()) {
        return *known;
    }
    const QImage picture = smileys_.load(source);
    if (picture.isNull() && pictureLookup_) {
        // The lookup keeps its own pictures; a refusal is not remembered here, since the file
        // may arrive later.
        return pictureLookup_(source);
    }
    // Remembered either way, so a refused address is not looked up on every repaint. The
    // markup is bounded, and so is the number of addresses in it.
    if (pictures_.size() > 1000) {
        pictures_.clear();
    }
    pictures_.insert(source, picture);
    return picture;
}

QVariant ChatPane::loadResource(int type, const QUrl& name) {
    if (type == QTextDocument::ImageResource) {
        for (const QString& address : {name.toString(), name.toString(QUrl::FullyEncoded)}) {
            const QImage picture = pictureFor(address);
            if (!picture.isNull()) {
                return picture;
            }
        }
    }
    return QVariant(QByteArray());
}

}  // namespace tavren
