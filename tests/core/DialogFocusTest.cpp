// Every dialog opens with the typing going into its first empty field, Tab walks the fields in
// the order they are laid out and then the buttons, and Enter presses OK, which only checks.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>

#include "config/ui/ChatConfig.h"
#include "core/ClientSession.h"
#include "core/ui/AccountEntryDialog.h"
#include "core/ui/ChangeEmailDialog.h"
#include "core/ui/ChangePasswordDialog.h"
#include "core/ui/ChatConsole.h"
#include "core/ui/ChatNewAway.h"
#include "core/ui/SignUpDialog.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

// A widget as the test names it: a button by its caption, anything else by its object name.
QString nameOf(const QWidget* widget) {
    if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
        return button->text().remove(QLatin1Char('&'));
    }
    return widget->objectName();
}

// Where the typing goes when the window opens.
QString focused(const QWidget& window) {
    return window.focusWidget() == nullptr ? QStringLiteral("(nothing)")
                                           : nameOf(window.focusWidget());
}

// The widgets Tab visits, starting at the focused one and going once round.
QStringList tabCycle(const QWidget& window) {
    QStringList visited;
    QWidget* const start = window.focusWidget();
    QWidget* widget = start;
    do {
        if ((widget->focusPolicy() & Qt::TabFocus) != 0 && widget->isVisibleTo(&window) &&
            widget->isEnabled()) {
            visited << nameOf(widget);
        }
        widget = widget->nextInFocusChain();
    } while (widget != nullptr && widget != start && visited.size() < 30);
    return visited;
}

void pressEnter(QWidget* widget) {
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(widget, &press);
}

class DialogFocusTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        session = std::make_unique<ClientSession>(root.path(), nullptr, prompter);
    }
    ServerSession& server() { return session->server(); }

    QTemporaryDir root;
    test::ScriptedPrompter prompter;
    std::unique_ptr<ClientSession> session;
};

TEST_F(DialogFocusTest, AccountFormsStartAtTheFirstEmptyFieldAndTabDownTheForm) {
    SignUpDialog signUp(server().login());
    signUp.show();
    EXPECT_EQ(focused(signUp), QStringLiteral("signUpName"));
    EXPECT_EQ(tabCycle(signUp), (QStringList{"signUpName", "signUpPassword", "signUpConfirmation",
                                             "signUpEmail", "Sign Up", "Cancel"}));

    ChangePasswordDialog password(server().accountRequests());
    password.show();
    EXPECT_EQ(focused(password), QStringLiteral("currentPassword"));
    EXPECT_EQ(tabCycle(password),
              (QStringList{"currentPassword", "newPassword", "confirmPassword", "OK", "Cancel"}));
    // Enter presses OK, which says what is missing and keeps the dialog open.
    const auto* problem = password.findChild<QLabel*>(QStringLiteral("problem"));
    EXPECT_FALSE(problem->isVisible()) << "no empty line where nothing is wrong";
    pressEnter(password.focusWidget());
    EXPECT_TRUE(password.isVisible());
    EXPECT_TRUE(problem->isVisible());
    EXPECT_EQ(problem->text(), QStringLiteral("Please enter your current password."));

    AccountEntryDialog add(server().accounts(), 0);
    add.show();
    EXPECT_EQ(focused(add), QStringLiteral("accountName"));
    EXPECT_EQ(tabCycle(add), (QStringList{"accountName", "accountPassword", "OK", "Cancel"}));
}

TEST_F(DialogFocusTest, FormsWithEverythingFilledInStartAtTheTopWithTheTextSelected) {
    ChangeEmailDialog email(server().accountRequests(), QStringLiteral("alice@example.org"));
    email.show();
    EXPECT_EQ(focused(email), QStringLiteral("email"));
    EXPECT_EQ(qobject_cast<QLineEdit*>(email.focusWidget())->selectedText(),
              QStringLiteral("alice@example.org"));

    ChangeEmailDialog noEmail(server().accountRequests(), QString());
    noEmail.show();
    EXPECT_EQ(focused(noEmail), QStringLiteral("email"));

    const int row = server().accounts().add(QStringLiteral("alice"), QStringLiteral("secret"));
    AccountEntryDialog modify(server().accounts(), row);
    modify.show();
    EXPECT_EQ(focused(modify), QStringLiteral("accountName"));
    EXPECT_EQ(qobject_cast<QLineEdit*>(modify.focusWidget())->selectedText(),
              QStringLiteral("alice"));
}

TEST_F(DialogFocusTest, AwayConsoleAndSettingsWindowsTakeTheKeyboardWhereItIsWanted) {
    ChatNewAway away(session->awayStatus(), session->awayMessages(), prompter);
    away.show();
    EXPECT_EQ(focused(away), QStringLiteral("Text1"));
    EXPECT_EQ(tabCycle(away),
              (QStringList{"Text1", "Text2", "Keep this message in my away list", "OK", "Cancel"}));

    // The console is for typing commands; its log is only read.
    ChatConsole console(server().console());
    console.show();
    EXPECT_EQ(focused(console), QStringLiteral("input"));
    EXPECT_EQ(tabCycle(console), (QStringList{"input", "Send"}));

    // The settings window starts at its page list, where the arrow keys pick a page.
    ChatConfig settings(session->settings(), session->dataFiles(), prompter, nullptr);
    settings.openAt(ChatConfig::Page::Server);
    EXPECT_EQ(focused(settings), QStringLiteral("lstOptions"));
}

}  // namespace
}  // namespace tavren
