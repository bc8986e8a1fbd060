#include "web/NewsFeed.h"

#include <QRegularExpression>

#include "core/ServerSession.h"

namespace tavren {

namespace {

constexpr QChar kTitleSeparator(0x0001);

void keepBounded(QList<NewsFeed::Item>& items) {
    while (items.size() > NewsFeed::kMostItems) {
        items.removeFirst();
    }
}

QString itemHtml(const NewsFeed::Item& item) {
    QString html;
    if (!item.title.isEmpty()) {
        html += QStringLiteral("<p><b>") + item.title.toHtmlEscaped() + QStringLiteral("</b></p>");
    }
    if (!item.text.isEmpty()) {
        html += QStringLiteral("<p>") + NewsFeed::textToHtml(item.text) + QStringLiteral("</p>");
    }
    return html;
}

}  // namespace

NewsFeed::NewsFeed(ServerSession& server, QObject* parent) : QObject(parent) {
    connect(&server, &ServerSession::paneClearRequested, this, &NewsFeed::clearPane);
    connect(&server, &ServerSession::newsWindowClearRequested, this, &NewsFeed::clearWindow);
    connect(&server, &ServerSession::newsItemArrived, this, &NewsFeed::addItem);
    connect(&server, &ServerSession::messageOfTheDay, this, &NewsFeed::setMessageOfTheDay);
    connect(&server, &ServerSession::onlineChanged, this, [this](bool online) {
        if (online) {
            clearPane();
            clearWindow();
        }
    });
}

bool NewsFeed::parseItem(const QString& payload, Item& item) {
    item.title = payload.section(kTitleSeparator, 0, 0).simplified();
    item.text = payload.section(kTitleSeparator, 1).trimmed();
    item.text.remove(kTitleSeparator);
    return !item.title.isEmpty() || !item.text.isEmpty();
}

QString NewsFeed::textToHtml(const QString& text) {
    static const QRegularExpression address(QStringLiteral(R"((https?://[^\s<>"']+))"),
                                            QRegularExpression::CaseInsensitiveOption);
    QString html;
    qsizetype from = 0;
    for (auto match = address.globalMatch(text); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        html += text.mid(from, found.capturedStart() - from).toHtmlEscaped();
        const QString link = found.captured(1).toHtmlEscaped();
        html += QStringLiteral("<a href=\"") + link + QStringLiteral("\">") + link +
                QStringLiteral("</a>");
        from = found.capturedEnd();
    }
    html += text.mid(from).toHtmlEscaped();
    html.replace(QLatin1Char('\n'), QStringLiteral("<br>"));
    return html;
}

QString NewsFeed::paneHtml() const {
    QString html;
    if (!motd_.isEmpty()) {
        html += QStringLiteral("<p><b>Message of the Day</b></p><p>") + textToHtml(motd_) +
                QStringLiteral("</p>");
    }
    if (!paneItems_.isEmpty()) {
        html += QStringLiteral("<p><b><u>News</u></b></p>");
        for (const Item& item : paneItems_) {
            html += itemHtml(item);
        }
    }
    return html;
}

QString NewsFeed::windowHtml() const {
    if (items_.isEmpty()) {
        return QStringLiteral("<p><i>") +
               tr("No news from the server. News arrive when you log in.") +
               QStringLiteral("</i></p>");
    }
    QString html;
    for (const Item& item : items_) {
        html += itemHtml(item) + QStringLiteral("<hr>");
    }
    return html;
}

void NewsFeed::clearPane() {
    motd_.clear();
    paneItems_.clear();
    emit paneChanged();
}

void NewsFeed::clearWindow() {
    items_.clear();
    emit windowChanged();
}

void NewsFeed::addItem(const QString& payload) {
    Item item;
    if (!parseItem(payload, item)) {
        return;
    }
    items_ << item;
    paneItems_ << item;
    keepBounded(items_);
    keepBounded(paneItems_);
    emit windowChanged();
    emit paneChanged();
}

void NewsFeed::setMessageOfTheDay(const QString& text) {
    motd_ = text;
    emit paneChanged();
}

}  // namespace tavren
