// The login flow's decisions against a scripted peer, and the list of saved accounts it works from.
#include <gtest/gtest.h>

#include "ClientUnderTest.h"
#include "FakePeer.h"
#include "Wait.h"
#include "core/AccountRequests.h"
#include "core/SavedAccounts.h"
#include "core/protocol/Catalogue.h"

namespace tavren {
namespace {

using test::waitUntil;
namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;
using Answer = Prompter::Answer;

TEST(LoginFlowTest, TheButtonAsksNewcomersConnectsSavedAccountsAndCancelStopsEither) {
    test::FakePeer server;
    test::ClientUnderTest client;
    client.pointAt(server.port());
    LoginFlow& login = client.session->login();
    int addRequests = 0;
    int signUpRequests = 0;
    QObject::connect(&login, &LoginFlow::addAccountRequested, [&] { ++addRequests; });
    QObject::connect(&login, &LoginFlow::signUpRequested, [&] { ++signUpRequests; });

    // Cancel, and Yes (the account is to be added to the list), leave the socket alone.
    client.prompter.answers = {Answer::Cancel, Answer::Yes};
    login.clickLoginButton();
    login.clickLoginButton();
    ASSERT_EQ(client.prompter.asked.size(), 2u);
    EXPECT_EQ(client.prompter.asked[0].kind, QStringLiteral("yesnocancel"));
    EXPECT_EQ(client.prompter.asked[0].title, QStringLiteral("Aready a Tavren Member?"));
    EXPECT_EQ(
        client.prompter.asked[0].text,
        QStringLiteral("Do you already have an account registered with Tavren Chat Service?"));
    EXPECT_EQ(addRequests, 1);
    test::runEventsFor(50);
    EXPECT_EQ(server.connections(), 0);
    EXPECT_EQ(login.button().kind, LoginButton::Kind::SignUp);

    client.prompter.answers = {Answer::No};
    login.clickLoginButton();
    EXPECT_EQ(login.button().caption, QStringLiteral("Cancel"));
    ASSERT_TRUE(waitUntil([&] { return server.received(out::kVersionBeforeSignUp); }));
    EXPECT_EQ(QString::fromStdString(server.frames().front().payload), LoginFlow::clientVersion());
    EXPECT_EQ(signUpRequests, 1);
    EXPECT_EQ(login.mode(), LoginFlow::Mode::New);
    EXPECT_FALSE(client.session->connection().clock().running())
        << "nobody is online yet while signing up";
    EXPECT_EQ(login.statusText(), QStringLiteral("Connected!"));
    // Giving up on the sign-up dialog closes the connection and offers sign-up again.
    login.cancelSignUp();
    EXPECT_EQ(client.session->link().socketState(), QAbstractSocket::UnconnectedState);
    EXPECT_EQ(login.button().kind, LoginButton::Kind::SignUp);
    EXPECT_EQ(login.statusText(), QStringLiteral("Connection Closed"));

    // A saved account connects at once; Cancel stops it and nothing reconnects.
    client.selectAccount(QStringLiteral("alice"), QStringLiteral("secret"));
    login.clickLoginButton();
    ASSERT_TRUE(waitUntil([&] { return server.received(out::kVersionBeforeLogin); }));
    EXPECT_EQ(login.statusText(), QStringLiteral("Connected!"));
    EXPECT_EQ(login.button().caption, QStringLiteral("Cancel"));
    login.clickLoginButton();
    EXPECT_EQ(login.button().caption, QStringLiteral("&Login"));
    EXPECT_FALSE(login.countdownRunning());
    test::runEventsFor(300);
    EXPECT_EQ(server.connections(), 2);
}

TEST(LoginFlowTest, AnUpdateNoticeAsksOnceForEachVersionAndTheLoginGoesOn) {
    test::FakePeer server;
    server.setResponder([](test::FakePeer& peer, const protocol::Frame& frame) {
        if (frame.code == out::kVersionBeforeLogin) {
            peer.send(in::kUpdateNotice, "2.0.0;https://example.org/tavren");
        }
    });
    test::ClientUnderTest client;
    QString downloadUrl;
    QObject::connect(&client.session->login(), &LoginFlow::updateDownloadRequested,
                     [&](const QString& url) { downloadUrl = url; });
    // Yes: download; No: never again for this version.
    int connection = 0;
    for (const Answer answer : {Answer::Yes, Answer::No, Answer::Cancel}) {
        client.prompter.asked.clear();
        client.prompter.answers = {answer};
        client.session->login().logOff();
        client.startLogin(server.port());
        ++connection;
        ASSERT_TRUE(waitUntil([&] {
            return server.connections() == connection && server.received(out::kCredentials);
        }));
        EXPECT_EQ(server.frames().back().payload, "alice:secret");
        const bool asked = !client.prompter.asked.empty();
        EXPECT_EQ(asked, answer != Answer::Cancel)
            << "after No the same version is not offered again";
        if (asked) {
            EXPECT_EQ(client.prompter.asked[0].title, QStringLiteral("Upgrade to 2.0.0 Now"));
        }
    }
    EXPECT_EQ(downloadUrl, QStringLiteral("https://example.org/tavren"));
    EXPECT_TRUE(client.settings->isNagSuppressed(QStringLiteral("2.0.0")));
}

TEST(LoginFlowTest, AnUpdateAddressIsShownAndOnlyAWebAddressIsEverOpened) {
    test::FakePeer server;
    QString offered;
    server.setResponder([&](test::FakePeer& peer, const protocol::Frame& frame) {
        if (frame.code == out::kVersionBeforeLogin) {
            peer.send(in::kUpdateNotice, "2.0.0;" + offered.toStdString());
        }
    });
    test::ClientUnderTest client;
    QStringList opened;
    QObject::connect(&client.session->login(), &LoginFlow::updateDownloadRequested,
                     [&](const QString& url) { opened << url; });
    int connection = 0;
    for (const QString& address :
         {QStringLiteral("file:///etc/passwd"), QStringLiteral("javascript:alert(1)"),
          QStringLiteral("smb://host/share/setup.exe"), QStringLiteral("https://"),
          QStringLiteral("https://example.org/tavren")}) {
        offered = address;
        client.prompter.asked.clear();
        client.prompter.answers = {Answer::Yes};
        client.session->login().logOff();
        client.startLogin(server.port());
        ++connection;
        ASSERT_TRUE(waitUntil(
            [&] { return server.connections() == connection && !client.prompter.asked.empty(); }));
        const QString question = client.prompter.asked[0].text;
        if (address.startsWith(QStringLiteral("https://example"))) {
            EXPECT_TRUE(question.contains(address)) << question.toStdString();
        } else {
            EXPECT_FALSE(question.contains(address)) << question.toStdString();
            EXPECT_TRUE(question.contains(QStringLiteral("no download address")));
        }
    }
    EXPECT_EQ(opened, QStringList{QStringLiteral("https://example.org/tavren")});
}

TEST(LoginFlowTest, CharactersTheCodePageCannotHoldAreRefusedBeforeTheyBecomeQuestionMarks) {
    // Both would reach the server as "??????" and be one password.
    const QString russian = QStringLiteral("\u043f\u0430\u0440\u043e\u043b\u044c");
    const QString emoji = QStringLiteral("key\U0001F511");
    EXPECT_TRUE(LoginFlow::checkSignUp(QStringLiteral("alice"), russian, russian,
                                       QStringLiteral("a@example.org"))
                    .contains(QStringLiteral("\u043f")));
    EXPECT_TRUE(LoginFlow::checkSignUp(QStringLiteral("alice"), emoji, emoji,
                                       QStringLiteral("a@example.org"))
                    .contains(QStringLiteral("\U0001F511")));
    // Western European letters and the euro sign have bytes of their own and pass.
    const QString western = QStringLiteral("na\u00efve\u20ac");
    EXPECT_EQ(LoginFlow::checkSignUp(QStringLiteral("alice"), western, western,
                                     QStringLiteral("a@example.org")),
              QString());
    EXPECT_FALSE(
        AccountRequests::checkPasswordChange(QStringLiteral("old"), russian, russian).isEmpty());
    EXPECT_EQ(AccountRequests::checkPasswordChange(QStringLiteral("old"), western, western),
              QString());
    test::ClientUnderTest client;
    SavedAccounts& accounts = client.session->accounts();
    EXPECT_FALSE(accounts.checkEntry(QStringLiteral("alice"), russian).isEmpty());
    EXPECT_EQ(accounts.add(QStringLiteral("alice"), russian), -1);
    EXPECT_EQ(accounts.add(QStringLiteral("alice"), western), 1);
}

TEST(SavedAccountsTest, TheStoredTextRoundTripsAndDamagedEntriesAreSkipped) {
    using Account = SavedAccounts::Account;
    const QList<Account> accounts = {{QStringLiteral("alice"), QStringLiteral("s3cret")},
                                     {QStringLiteral("Bob"), QStringLiteral("p@ss word")}};
    const QString text = SavedAccounts::serialize(accounts);
    EXPECT_EQ(text, QStringLiteral("alice:s3cret;Bob:p@ss word"));
    EXPECT_EQ(SavedAccounts::parse(text), accounts);
    // No name, no colon, a second colon, the pseudo-account and a repeated name (any case).
    const QList<Account> parsed = SavedAccounts::parse(
        QStringLiteral(";:nopass;justtext;carol:a:b;*new_user*:x;alice:1;ALICE:2;;dave:"));
    EXPECT_EQ(parsed, (QList<Account>{{QStringLiteral("alice"), QStringLiteral("1")},
                                      {QStringLiteral("dave"), QString()}}));
}

TEST(SavedAccountsTest, TheListKeepsNewUserFirstAndRefusesWhatCannotBeStored) {
    test::ClientUnderTest client;
    SavedAccounts& accounts = client.session->accounts();
    ASSERT_EQ(accounts.rowCount(), 1);
    EXPECT_EQ(accounts.row(0).name, QStringLiteral("*new_user*"));
    EXPECT_EQ(accounts.add(QStringLiteral(" alice "), QStringLiteral("one")), 1);
    EXPECT_EQ(accounts.add(QStringLiteral("bob"), QStringLiteral("two")), 2);
    EXPECT_EQ(accounts.checkEntry(QStringLiteral("ALICE"), QStringLiteral("x")),
              QStringLiteral("That account is already in the list."));
    for (const auto& [name, password] :
         {std::pair{QStringLiteral("a:b"), QStringLiteral("x")},
          std::pair{QStringLiteral("carol"), QStringLiteral("x;y")},
          std::pair{QStringLiteral("*NEW_USER*"), QStringLiteral("x")},
          std::pair{QStringLiteral("carol"), QString()}}) {
        EXPECT_FALSE(accounts.checkEntry(name, password).isEmpty()) << name.toStdString();
        EXPECT_EQ(accounts.add(name, password), -1);
    }
    // Editing a row may keep its own name.
    EXPECT_EQ(accounts.modify(1, QStringLiteral("Alice"), QStringLiteral("uno")), 1);
    EXPECT_EQ(accounts.modify(1, QStringLiteral("bob"), QStringLiteral("dos")), -1);
    EXPECT_FALSE(accounts.remove(0)) << "*new_user* cannot be removed";
    EXPECT_EQ(client.settings->userString(), QStringLiteral("Alice:uno;bob:two"));
    // The account used last comes first next time.
    EXPECT_EQ(accounts.markUsed(QStringLiteral("BOB")), 1);
    accounts.updatePassword(QStringLiteral("alice"), QStringLiteral("tres"));
    EXPECT_EQ(client.store->value(QStringLiteral("Users"), QStringLiteral("UserString")),
              QStringLiteral("bob:two;Alice:tres"));

    // A second client on the same settings starts with the same list, last used selected.
    Settings again(*client.store, client.dir.path(), nullptr);
    test::ScriptedPrompter prompter;
    ServerSession other(again, prompter, test::ClientUnderTest::fastOptions());
    EXPECT_EQ(other.accounts().rowCount(), 3);
    EXPECT_EQ(other.login().selectedRow(), 1);
    EXPECT_EQ(other.login().button().caption, QStringLiteral("&Login"));
}

}  // namespace
}  // namespace tavren
