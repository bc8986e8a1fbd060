#pragma once

#include <QDialog>

class QCheckBox;

namespace tavren {

class BuddyList;

// "Buddy List Setup..": whether offline buddies are listed, whether the buddy sounds play and
// whether a buddy coming online is announced by a tray notice. OK keeps the choice.
class BuddyListSetup : public QDialog {
    Q_OBJECT
  public:
    explicit BuddyListSetup(BuddyList& list, QWidget* parent = nullptr);

    // The dialog of `parent`, raised if it is open already, else a new one (deleted on close).
    static BuddyListSetup* open(BuddyList& list, QWidget* parent);

    QCheckBox* showOffline() const { return showOffline_; }
    QCheckBox* playSounds() const { return playSounds_; }
    QCheckBox* notifyOnline() const { return notifyOnline_; }

    void accept() override;

  private:
    BuddyList& list_;
    QCheckBox* showOffline_ = nullptr;
    QCheckBox* playSounds_ = nullptr;
    QCheckBox* notifyOnline_ = nullptr;
};

}  // namespace tavren
