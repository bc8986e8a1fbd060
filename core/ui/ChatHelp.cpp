#include "core/ui/ChatHelp.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSplitter>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace tavren {

namespace {
constexpr int kPageRole = Qt::UserRole;
}  // namespace

ChatHelp::ChatHelp(QWidget* parent) : QWidget(parent, Qt::Window) {
    setObjectName(QStringLiteral("ChatHelp"));
    setWindowTitle(tr("Tavren Help"));
    search_ = new QLineEdit(this);
    search_->setObjectName(QStringLiteral("search"));
    search_->setPlaceholderText(tr("Search the help"));
    search_->setClearButtonEnabled(true);
    topics_ = new QListWidget(this);
    topics_->setObjectName(QStringLiteral("topics"));
    page_ = new QTextBrowser(this);
    page_->setObjectName(QStringLiteral("page"));
    page_->setOpenLinks(false);
    connect(search_, &QLineEdit::textChanged, this, &ChatHelp::search);
    connect(topics_, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
        if (item != nullptr) {
            showPage(item->data(kPageRole).toInt());
        }
    });

    auto* left = new QWidget(this);
    auto* leftLayout = new QVBoxLayout(left);
    leftLayout->setContentsMargins(0, 0, 0, 0);
    leftLayout->addWidget(search_);
    leftLayout->addWidget(topics_, 1);
    auto* splitter = new QSplitter(this);
    splitter->addWidget(left);
    splitter->addWidget(page_);
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 3);
    // The topics' titles fit their list.
    splitter->setSizes({250, 510});
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(splitter);
    search(QString());
    resize(760, 520);
}

void ChatHelp::showTopic(const QString& topic) {
    search_->clear();
    const int index = std::max(0, pages_.find(topic));
    for (int row = 0; row < topics_->count(); ++row) {
        if (topics_->item(row)->data(kPageRole).toInt() == index) {
            topics_->setCurrentRow(row);
        }
    }
    show();
    raise();
    activateWindow();
}

void ChatHelp::search(const QString& query) {
    if (search_->text() != query) {
        search_->setText(query);  // comes back here through textChanged
        return;
    }
    topics_->clear();
    const QList<int> found = pages_.search(query);
    for (const int index : found) {
        auto* item = new QListWidgetItem(pages_.pages()[index].title, topics_);
        item->setData(kPageRole, index);
    }
    if (found.isEmpty()) {
        page_->setHtml(QStringLiteral("<p>") +
                       tr("No page mentions \"%1\".").arg(query.toHtmlEscaped()) +
                       QStringLiteral("</p>"));
        return;
    }
    topics_->setCurrentRow(0);
}

void ChatHelp::showPage(int index) {
    if (index < 0 || index >= pages_.pages().size()) {
        return;
    }
    page_->setHtml(pages_.pages()[index].html);
    markWords();
}

// The words searched for get a yellow background, so the eye finds them on the page.
void ChatHelp::markWords() {
    QList<QTextEdit::ExtraSelection> marks;
    QTextCharFormat marked;
    marked.setBackground(QColor(255, 236, 120));
    for (const QString& word :
         search_->text().simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        QTextCursor at(page_->document());
        while (!(at = page_->document()->find(word, at)).isNull()) {
            marks << QTextEdit::ExtraSelection{at, marked};
        }
    }
    page_->setExtraSelections(marks);
}

QStringList ChatHelp::listedTitles() const {
    QStringList titles;
    for (int row = 0; row < topics_->count(); ++row) {
        titles << topics_->item(row)->text();
    }
    return titles;
}

QString ChatHelp::pageText() const {
    return page_->toPlainText();
}

}  // namespace tavren
