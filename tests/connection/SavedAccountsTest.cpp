#include <gtest/gtest.h>

#include "ClientUnderTest.h"
#include "core/SavedAccounts.h"

namespace tavren {
namespace {

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
    ASSERT_EQ(parsed.size(), 2);
    EXPECT_EQ(parsed[0], (Account{QStringLiteral("alice"), QStringLiteral("1")}));
    EXPECT_EQ(parsed[1], (Account{QStringLiteral("dave"), QString()}));
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
    EXPECT_FALSE(accounts.checkEntry(QStringLiteral("a:b"), QStringLiteral("x")).isEmpty());
    EXPECT_FALSE(accounts.checkEntry(QStringLiteral("carol"), QStringLiteral("x;y")).isEmpty());
    EXPECT_FALSE(accounts.checkEntry(QStringLiteral("*NEW_USER*"), QStringLiteral("x")).isEmpty());
    EXPECT_FALSE(accounts.checkEntry(QStringLiteral("carol"), QString()).isEmpty());
    EXPECT_EQ(accounts.add(QStringLiteral("carol"), QStringLiteral("x;y")), -1);
    // Editing a row may keep its own name.
    EXPECT_EQ(accounts.modify(1, QStringLiteral("Alice"), QStringLiteral("uno")), 1);
    EXPECT_EQ(accounts.modify(1, QStringLiteral("bob"), QStringLiteral("dos")), -1);
    EXPECT_FALSE(accounts.remove(0)) << "*new_user* cannot be removed";

    EXPECT_EQ(client.settings->userString(), QStringLiteral("Alice:uno;bob:two"));
    // The account used last comes first next time.
    EXPECT_EQ(accounts.markUsed(QStringLiteral("BOB")), 1);
    EXPECT_EQ(client.settings->userString(), QStringLiteral("bob:two;Alice:uno"));
    accounts.updatePassword(QStringLiteral("alice"), QStringLiteral("tres"));
    EXPECT_TRUE(accounts.remove(1));
    EXPECT_EQ(client.store->value(QStringLiteral("Users"), QStringLiteral("UserString")),
              QStringLiteral("Alice:tres"));

    // A second client on the same settings starts with the same list, last used selected.
    Settings again(*client.store, client.dir.path(), nullptr);
    test::ScriptedPrompter prompter;
    ServerSession other(again, prompter, test::ClientUnderTest::fastOptions());
    EXPECT_EQ(other.accounts().rowCount(), 2);
    EXPECT_EQ(other.login().selectedRow(), 1);
    EXPECT_EQ(other.login().button().caption, QStringLiteral("&Login"));
}

}  // namespace
}  // namespace tavren
