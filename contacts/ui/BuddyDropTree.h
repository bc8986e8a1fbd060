#pragma once

#include <QTreeWidget>

namespace tavren {

// The editor's tree: buddies are dragged onto a folder (to its end) or onto another buddy
// (before or after it). The tree moves nothing itself; it says where the buddy should go and
// the editor's copy of the list decides.
class BuddyDropTree : public QTreeWidget {
    Q_OBJECT
  public:
    explicit BuddyDropTree(QWidget* parent = nullptr);

  signals:
    // `beforeIndex` is the position in `folder` the buddy should take (-1: at the end).
    void moveRequested(const QString& name, const QString& folder, int beforeIndex);

  protected:
    void dropEvent(QDropEvent* event) override;
};

}  // namespace tavren
