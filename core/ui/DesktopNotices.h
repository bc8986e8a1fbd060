#pragma once

#include <QObject>
#include <QString>
#include <functional>

class QSystemTrayIcon;

namespace tavren {

class Settings;

// Notices beside the tray icon for what happens while Tavren is in the background: a private
// message, a buddy coming online. Switched by the "notify" setting; shown only when the window
// the event belongs to is not the active one. Clicking a notice asks for the conversation with
// the member it was about.
class DesktopNotices : public QObject {
    Q_OBJECT
  public:
    // Shows one notice (title, text); replaced in tests.
    using Shower = std::function<void(const QString& title, const QString& text)>;
    // Whether a window of ours is in front, so that a notice would only repeat what is shown.
    using InFront = std::function<bool()>;

    DesktopNotices(const Settings& settings, QSystemTrayIcon* tray, InFront inFront,
                   QObject* parent = nullptr);

    void setShower(Shower shower) { shower_ = std::move(shower); }

    void privateMessage(const QString& user, const QString& text);
    void buddyOnline(const QString& user);
    // New mail from `sender`; clicking the notice asks for the mail window.
    void newMail(const QString& sender);
    // The notice was clicked.
    void clicked();

    // The text of a message as a notice shows it: markup dropped, one line, not too long.
    static QString plainText(const QString& text);

  signals:
    void conversationWanted(const QString& user);
    void mailWanted();

  private:
    // False when the notice was not shown (switched off, or a window of ours is in front).
    bool show(const QString& user, const QString& title, const QString& text);

    const Settings& settings_;
    InFront inFront_;
    Shower shower_;
    QString lastUser_;
    bool lastWasMail_ = false;
};

}  // namespace tavren
