#pragma once

#include <QWidget>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace tavren {

class ChannelDirectory;
class RoomCommandHost;
class ServerSession;
class SettingsStore;

// The channel directory: the server's channels with their member counts, status and topic, in
// the server's order, and a join button. Joining a channel that is open already is refused in
// the room window; with nothing selected the button does nothing. Column widths are kept under
// "Joincolumn" + the column number.
class ChatJoin : public QWidget {
    Q_OBJECT
  public:
    ChatJoin(ChannelDirectory& directory, ServerSession& server, SettingsStore& store,
             RoomCommandHost& host, QWidget* parent = nullptr);

    QTreeWidget& list() { return *list_; }
    // The join button.
    void joinSelected();

  private:
    void showList();

    ChannelDirectory& directory_;
    SettingsStore& store_;
    QTreeWidget* list_ = nullptr;
    QLabel* count_ = nullptr;
    QPushButton* join_ = nullptr;
    QPushButton* refresh_ = nullptr;
    QPushButton* create_ = nullptr;
};

}  // namespace tavren
