#include "web/ui/ChatNews.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "web/NewsFeed.h"

namespace tavren {

ChatNews::ChatNews(NewsFeed& news, QWidget* parent) : QWidget(parent, Qt::Window), news_(news) {
    setObjectName(QStringLiteral("ChatNews"));
    setWindowTitle(tr("Tavren News"));
    page_ = new QTextBrowser(this);
    page_->setObjectName(QStringLiteral("newsPage"));
    // The page is built from escaped text with http and https links only.
    page_->setOpenExternalLinks(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QWidget::close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(page_, 1);
    layout->addWidget(buttons);
    connect(&news_, &NewsFeed::windowChanged, this, &ChatNews::refresh);
    refresh();
    resize(460, 380);
}

QString ChatNews::text() const {
    return page_->toPlainText();
}

void ChatNews::refresh() {
    page_->setHtml(news_.windowHtml());
}

}  // namespace tavren
