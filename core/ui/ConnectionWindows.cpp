#include "core/ui/ConnectionWindows.h"

#include <QScreen>
#include <QWidget>
#include <algorithm>

#include "core/Prompter.h"
#include "core/ServerSession.h"
#include "core/ui/ChangeEmailDialog.h"
#include "core/ui/ChangePasswordDialog.h"
#include "core/ui/ChatConsole.h"
#include "core/ui/ChatError.h"
#include "core/ui/ChatLogin.h"

namespace tavren {

namespace {
constexpr int kWindowGap = 8;

void bringForward(QWidget& window) {
    window.show();
    window.raise();
    window.activateWindow();
}
}  // namespace

ConnectionWindows::ConnectionWindows(ServerSession& session, Prompter& prompter, QWidget* owner)
    : QObject(owner), session_(session), prompter_(prompter), owner_(owner) {
    // The error window must exist before the first error so that it can show itself.
    errors();
    connect(&session_.accountRequests(), &AccountRequests::emailReceived, this,
            &ConnectionWindows::openEmailDialog);
}

ChatLogin& ConnectionWindows::login() {
    if (login_ == nullptr) {
        login_ = new ChatLogin(session_, prompter_, owner_);
    }
    return *login_;
}

ChatError& ConnectionWindows::errors() {
    if (errors_ == nullptr) {
        errors_ = new ChatError(session_.errorLog(), owner_);
    }
    return *errors_;
}

ChatConsole& ConnectionWindows::console() {
    if (console_ == nullptr) {
        console_ = new ChatConsole(session_.console(), owner_);
    }
    return *console_;
}

void ConnectionWindows::showLogin() {
    const bool firstShow = login_ == nullptr;
    ChatLogin& window = login();
    if (firstShow && owner_ != nullptr && owner_->isVisible()) {
        // Beside the main window rather than over it, on whichever side the screen has room.
        window.adjustSize();
        if (!owner_->testAttribute(Qt::WA_Moved)) {
            placePairOnScreen(window);
        }
        const QRect owner = owner_->frameGeometry();
        QPoint place(owner.right() + kWindowGap, owner.top());
        if (const QScreen* screen = owner_->screen()) {
            const QRect area = screen->availableGeometry();
            if (place.x() + window.width() > area.right()) {
                place.setX(std::max(area.left(), owner.left() - window.width() - kWindowGap));
            }
        }
        window.move(place);
    }
    bringForward(window);
}

void ConnectionWindows::placePairOnScreen(const QWidget& login) {
    // The main window has only just been shown and has no place of its own (none was saved):
    // the window manager would put it wherever it likes, perhaps under the login window. Both
    // go side by side in the middle of the screen instead.
    const QScreen* screen = owner_->screen();
    if (screen == nullptr) {
        return;
    }
    const QRect area = screen->availableGeometry();
    const int pairWidth = owner_->frameGeometry().width() + kWindowGap + login.width();
    owner_->move(area.left() + std::max(0, (area.width() - pairWidth) / 2),
                 area.top() + std::max(0, (area.height() - owner_->frameGeometry().height()) / 2));
}

void ConnectionWindows::loginOrLogOff() {
    if (session_.online()) {
        session_.login().logOff();
        return;
    }
    showLogin();
}

void ConnectionWindows::switchAccount() {
    session_.login().logOff();
    showLogin();
}

void ConnectionWindows::showCurrentAccount() {
    prompter_.message(session_.currentAccountText(), QStringLiteral("Current Account"),
                      Prompter::Icon::Information);
}

void ConnectionWindows::changePassword() {
    auto* dialog = new ChangePasswordDialog(session_.accountRequests(), owner_);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void ConnectionWindows::changeEmail() {
    session_.accountRequests().askEmail();
}

void ConnectionWindows::openEmailDialog(const QString& email) {
    auto* dialog = new ChangeEmailDialog(session_.accountRequests(), email, owner_);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void ConnectionWindows::showErrors() {
    bringForward(errors());
}

void ConnectionWindows::showConsole() {
    bringForward(console());
}

}  // namespace tavren
