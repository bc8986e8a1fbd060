#include "core/ui/DesktopNotices.h"

#include <QSystemTrayIcon>
#include <QTextDocumentFragment>

#include "config/Settings.h"

namespace tavren {

namespace {
constexpr qsizetype kMaxNoticeText = 160;
}  // namespace

DesktopNotices::DesktopNotices(const Settings& settings, QSystemTrayIcon* tray, InFront inFront,
                               QObject* parent)
    : QObject(parent), settings_(settings), inFront_(std::move(inFront)) {
    if (tray != nullptr) {
        shower_ = [tray](const QString& title, const QString& text) {
            tray->showMessage(title, text, QSystemTrayIcon::Information);
        };
        connect(tray, &QSystemTrayIcon::messageClicked, this, &DesktopNotices::clicked);
    }
}

void DesktopNotices::privateMessage(const QString& user, const QString& text) {
    show(user, tr("Private message from %1").arg(user), plainText(text));
}

void DesktopNotices::buddyOnline(const QString& user) {
    show(user, tr("%1 is online").arg(user), tr("Click to talk to %1.").arg(user));
}

void DesktopNotices::newMail(const QString& sender) {
    if (show(QString(), tr("New mail from %1").arg(sender), tr("Click to read it."))) {
        lastWasMail_ = true;
    }
}

void DesktopNotices::clicked() {
    if (lastWasMail_) {
        emit mailWanted();
    } else if (!lastUser_.isEmpty()) {
        emit conversationWanted(lastUser_);
    }
}

bool DesktopNotices::show(const QString& user, const QString& title, const QString& text) {
    if (!shower_ || !settings_.values().notify || (inFront_ && inFront_())) {
        return false;
    }
    lastUser_ = user;
    lastWasMail_ = false;
    shower_(title, text);
    return true;
}

QString DesktopNotices::plainText(const QString& text) {
    // Messages are markup; the notice shows what a reader of the pane would read.
    // A picture (a smiley) leaves an object mark in the text, which a notice cannot show.
    QString plain = QTextDocumentFragment::fromHtml(text)
                        .toPlainText()
                        .remove(QChar::ObjectReplacementCharacter)
                        .simplified();
    if (plain.size() > kMaxNoticeText) {
        plain = plain.left(kMaxNoticeText - 3) + QStringLiteral("...");
    }
    return plain;
}

}  // namespace tavren
