#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace tavren {

// The client's own help: one page per topic, shipped inside the program (":/tavren/help/"), in
// the order of their file names. Each page's title is its first heading.
class HelpPages {
  public:
    struct Page {
        QString name;   // the file name without ".html", e.g. "04-text-commands"
        QString title;  // "Text commands"
        QString html;
        QString text;  // the words, for searching
    };

    // The pages in `folder` (the program's own when empty).
    explicit HelpPages(const QString& folder = QString());

    const QList<Page>& pages() const { return pages_; }
    // The index of the page with this name or title (ignoring case), or -1.
    int find(const QString& nameOrTitle) const;
    // The pages holding every word of `query` (ignoring case), best first: most occurrences,
    // titles counting more. An empty query gives every page in order.
    QList<int> search(const QString& query) const;

  private:
    QList<Page> pages_;
};

}  // namespace tavren
