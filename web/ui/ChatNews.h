#pragma once

#include <QWidget>

class QTextBrowser;

namespace tavren {

class NewsFeed;

// The news window ("/news"): every item the server sent since it last cleared the window.
class ChatNews : public QWidget {
    Q_OBJECT
  public:
    explicit ChatNews(NewsFeed& news, QWidget* parent = nullptr);

    QString text() const;

  private:
    void refresh();

    NewsFeed& news_;
    QTextBrowser* page_;
};

}  // namespace tavren
