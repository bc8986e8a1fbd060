#pragma once

#include <QObject>
#include <QPointer>

class QWidget;

namespace tavren {

class ChatMail;
class ChatProfile;
class ChatSearch;
class ChatUpdateProfile;
class ClientSession;
class Prompter;

// The windows of mail, member search and profiles: each made on first use, shown again after
// it was closed, and gone with the main window. A profile that arrives from the server opens
// the profile window (or takes it over, as there is one).
class ContactWindows : public QObject {
    Q_OBJECT
  public:
    ContactWindows(ClientSession& session, Prompter& prompter, QObject* parent = nullptr);
    ~ContactWindows() override;

    void openMail();
    void composeMailTo(const QString& names);
    void openSearch();
    void openProfileEditor();
    void showProfile(const QString& name, const QString& page);
    void previewProfile(const QString& page);

    // Null until first opened.
    ChatMail* mailWindow() const;
    ChatSearch* searchWindow() const;
    ChatProfile* profileWindow() const;
    ChatUpdateProfile* profileEditor() const;

  signals:
    // A profile page's "radio" element was clicked (its link).
    void radioRequested(const QString& station);

  private:
    ChatMail& mail();
    ChatProfile& profile();
    static void bringForward(QWidget& window);

    ClientSession& session_;
    Prompter& prompter_;
    QPointer<ChatMail> mail_;
    QPointer<ChatSearch> search_;
    QPointer<ChatProfile> profile_;
    QPointer<ChatUpdateProfile> editor_;
};

}  // namespace tavren
