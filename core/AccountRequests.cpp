#include "core/AccountRequests.h"

#include "core/LoginFlow.h"
#include "core/SavedAccounts.h"
#include "core/ServerLink.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"

namespace tavren {

namespace out = protocol::client_to_server;

namespace {
bool hasSeparator(const QString& text) {
    return text.contains(QLatin1Char(':')) || text.contains(QLatin1Char(';'));
}
}  // namespace

AccountRequests::AccountRequests(ServerLink& link, LoginFlow& login, SavedAccounts& accounts,
                                 QObject* parent)
    : QObject(parent), link_(link), login_(login), accounts_(accounts) {}

QString AccountRequests::checkPasswordChange(const QString& current, const QString& replacement,
                                             const QString& confirmation) {
    if (current.isEmpty()) {
        return QStringLiteral("Please enter your current password.");
    }
    if (replacement.isEmpty()) {
        return QStringLiteral("Please enter the new password.");
    }
    if (replacement != confirmation) {
        return QStringLiteral("The two new passwords do not match.");
    }
    if (hasSeparator(current) || hasSeparator(replacement)) {
        return QStringLiteral("Passwords cannot contain \":\" or \";\".");
    }
    if (const QString problem =
            WireText::refusalForWire(replacement, QStringLiteral("new password"));
        !problem.isEmpty()) {
        return problem;
    }
    return QString();
}

QString AccountRequests::checkEmail(const QString& email) {
    const QString trimmed = email.trimmed();
    if (trimmed.isEmpty() || !trimmed.contains(QLatin1Char('@'))) {
        return QStringLiteral("Please enter your e-mail address.");
    }
    if (hasSeparator(trimmed)) {
        return QStringLiteral("An e-mail address cannot contain \":\" or \";\".");
    }
    return QString();
}

bool AccountRequests::changePassword(const QString& current, const QString& replacement) {
    if (!login_.online()) {
        return false;
    }
    pendingPassword_ = replacement;
    link_.SendPacket(current + QLatin1Char(':') + replacement, out::kChangePassword);
    return true;
}

bool AccountRequests::askEmail() {
    if (!login_.online()) {
        return false;
    }
    emailAsked_ = true;
    link_.SendPacket(QString(), out::kAskEmail);
    return true;
}

bool AccountRequests::changeEmail(const QString& email) {
    if (!login_.online()) {
        return false;
    }
    link_.SendPacket(email.trimmed(), out::kChangeEmail);
    return true;
}

bool AccountRequests::changeNicknameFormat(const QString& format) {
    if (!login_.online()) {
        return false;
    }
    link_.SendPacket(format, out::kNicknameFormat);
    return true;
}

void AccountRequests::onAccountInfo(const ServerMessage& message) {
    // Only an answer the user asked for opens the dialog.
    if (emailAsked_) {
        emailAsked_ = false;
        emit emailReceived(message.payload);
    }
}

void AccountRequests::onSuccessNotice(const ServerMessage&) {
    if (!pendingPassword_.isEmpty()) {
        accounts_.updatePassword(login_.userName(), pendingPassword_);
        pendingPassword_.clear();
    }
}

void AccountRequests::onNotice(const ServerMessage&) {
    // A refusal: the saved password stays as it was.
    pendingPassword_.clear();
}

}  // namespace tavren
