#pragma once

#include <QList>
#include <QObject>
#include <QString>

namespace tavren {

class ServerSession;

// The server's news and message of the day, for the main window's news pane and the news
// window. The server clears the pane with (1, 2) and the news window with (1, 7), then sends
// each item as (4, 3) title U+0001 text; the message of the day (4, 2) goes to the pane only.
// Everything the server sends is shown as text, never as markup; web addresses in it become
// links. A new login starts empty, so news of another server or session never linger.
class NewsFeed : public QObject {
    Q_OBJECT
  public:
    struct Item {
        QString title;
        QString text;
        bool operator==(const Item&) const = default;
    };

    // At most this many items are kept; the oldest go first.
    static constexpr int kMostItems = 50;

    explicit NewsFeed(ServerSession& server, QObject* parent = nullptr);

    const QList<Item>& items() const { return items_; }
    // The pane's page: the message of the day and the news sent since the pane was cleared.
    QString paneHtml() const;
    // The news window's page: every item with its title.
    QString windowHtml() const;

    // One item from its payload (title U+0001 text); false for an item with neither.
    static bool parseItem(const QString& payload, Item& item);
    // Text as markup: escaped, line breaks kept, http and https addresses as links.
    static QString textToHtml(const QString& text);

    void clearPane();
    void clearWindow();
    void addItem(const QString& payload);
    void setMessageOfTheDay(const QString& text);

  signals:
    void paneChanged();
    void windowChanged();

  private:
    QString motd_;
    QList<Item> paneItems_;
    QList<Item> items_;
};

}  // namespace tavren
