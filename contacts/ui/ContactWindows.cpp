#include "contacts/ui/ContactWindows.h"

#include "contacts/Profiles.h"
#include "contacts/ui/ChatMail.h"
#include "contacts/ui/ChatProfile.h"
#include "contacts/ui/ChatSearch.h"
#include "contacts/ui/ChatUpdateProfile.h"
#include "core/ClientSession.h"

namespace tavren {

ContactWindows::ContactWindows(ClientSession& session, Prompter& prompter, QObject* parent)
    : QObject(parent), session_(session), prompter_(prompter) {
    connect(&session_.profiles(), &Profiles::profileArrived, this, &ContactWindows::showProfile);
}

ContactWindows::~ContactWindows() {
    delete mail_;
    delete search_;
    delete profile_;
    delete editor_;
}

ChatMail* ContactWindows::mailWindow() const {
    return mail_;
}

ChatSearch* ContactWindows::searchWindow() const {
    return search_;
}

ChatProfile* ContactWindows::profileWindow() const {
    return profile_;
}

ChatUpdateProfile* ContactWindows::profileEditor() const {
    return editor_;
}

void ContactWindows::bringForward(QWidget& window) {
    if (window.isMinimized()) {
        window.showNormal();
    }
    window.show();
    window.raise();
    window.activateWindow();
}

ChatMail& ContactWindows::mail() {
    if (mail_ == nullptr) {
        mail_ = new ChatMail(session_, prompter_, nullptr);
        mail_->setAttribute(Qt::WA_QuitOnClose, false);
    }
    return *mail_;
}

ChatProfile& ContactWindows::profile() {
    if (profile_ == nullptr) {
        profile_ = new ChatProfile(session_, nullptr);
        profile_->setAttribute(Qt::WA_QuitOnClose, false);
        connect(profile_, &ChatProfile::radioRequested, this, &ContactWindows::radioRequested);
    }
    return *profile_;
}

void ContactWindows::openMail() {
    mail().showInbox();
    bringForward(mail());
    // The inbox is the server's: show what it holds now.
    session_.mailbox().refresh();
}

void ContactWindows::composeMailTo(const QString& names) {
    mail().composeTo(names);
    bringForward(mail());
}

void ContactWindows::openSearch() {
    if (search_ == nullptr) {
        search_ = new ChatSearch(session_, nullptr);
        search_->setAttribute(Qt::WA_QuitOnClose, false);
        connect(search_, &ChatSearch::mailRequested, this, &ContactWindows::composeMailTo);
    }
    bringForward(*search_);
    search_->focusText();
}

void ContactWindows::openProfileEditor() {
    if (editor_ == nullptr) {
        editor_ = new ChatUpdateProfile(session_, prompter_, nullptr);
        editor_->setAttribute(Qt::WA_QuitOnClose, false);
        connect(editor_, &ChatUpdateProfile::previewRequested, this,
                &ContactWindows::previewProfile);
        editor_->reload();
    }
    bringForward(*editor_);
}

void ContactWindows::showProfile(const QString& name, const QString& page) {
    profile().showPage(name, page);
    bringForward(profile());
}

void ContactWindows::previewProfile(const QString& page) {
    profile().showPage(session_.server().login().userName(), page, true);
    bringForward(profile());
}

}  // namespace tavren
