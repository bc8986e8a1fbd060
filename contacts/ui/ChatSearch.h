#pragma once

#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QTimer;
class QTreeWidget;
class QTreeWidgetItem;

namespace tavren {

class ClientSession;
class MemberSearch;

// The member search window: the field to search (Combo1), the text (Text1), the search button
// (XPButton4) and the members found (List1). While the server looks, the caption counts dots
// (Timer1); the answer puts the number of members found in it. A member's menu adds the member
// to the buddy list, writes them mail, opens their link, their profile or a conversation.
class ChatSearch : public QWidget {
    Q_OBJECT
  public:
    explicit ChatSearch(ClientSession& session, QWidget* parent = nullptr);

    QComboBox& field() const { return *field_; }
    QLineEdit& text() const { return *text_; }
    QTreeWidget& list() const { return *list_; }
    QTimer& captionTimer() const { return *timer_; }

    void search();
    // Puts the keyboard into the text field, all of it selected for typing over.
    void focusText();
    // The menu for a row of the list (null for no row); the caller owns it.
    QMenu* menuFor(QTreeWidgetItem* item);

  signals:
    // Send Mail..: the mail window composes to this member.
    void mailRequested(const QString& name);

  private:
    void showResults();
    void advanceCaption();
    QString nameOf(const QTreeWidgetItem* item) const;

    ClientSession& session_;
    MemberSearch& search_;
    QComboBox* field_ = nullptr;
    QLineEdit* text_ = nullptr;
    QPushButton* searchButton_ = nullptr;
    QTreeWidget* list_ = nullptr;
    QLabel* hint_ = nullptr;
    QTimer* timer_ = nullptr;
    int captionStep_ = 0;
};

}  // namespace tavren
