#pragma once

#include <QWidget>

#include "core/HelpPages.h"

class QLineEdit;
class QListWidget;
class QTextBrowser;

namespace tavren {

// The help window: a search box, the topics (those that hold every word searched for) and the
// page, with the words searched for marked in it.
class ChatHelp : public QWidget {
    Q_OBJECT
  public:
    explicit ChatHelp(QWidget* parent = nullptr);

    // Shows the page with this name or title (the first when empty or unknown).
    void showTopic(const QString& topic = QString());
    void search(const QString& query);
    QStringList listedTitles() const;
    QString pageText() const;

  private:
    void showPage(int index);
    void markWords();

    HelpPages pages_;
    QLineEdit* search_;
    QListWidget* topics_;
    QTextBrowser* page_;
};

}  // namespace tavren
