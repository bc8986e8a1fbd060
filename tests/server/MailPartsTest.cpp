// The parts of mail, profiles and search that need no network: the mail records both ways, the
// sent time, the server's own profile page and the link it takes from a page, and the SQLite
// stores behind them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "core/protocol/Fields.h"
#include "server/contacts/MailRecords.h"
#include "server/contacts/ProfilePages.h"
#include "server/storage/SqliteAccountStore.h"
#include "server/storage/SqliteDatabase.h"
#include "server/storage/SqliteMailStore.h"
#include "server/storage/SqliteMemberDirectory.h"
#include "server/storage/SqliteProfileStore.h"

namespace tavren::server {
namespace {

TEST(MailRecordsTest, RecordsAreReadAndWrittenWithTheirSeparators) {
    const auto sent = MailRecords::parseSent(
        "bob\x01line one<br>line: two\x01Re: hi\x02"
        "carol\x01"
        "body\x01subject\x01with a stray separator\x02"
        "dave\x02");
    ASSERT_EQ(sent.size(), 3u);
    EXPECT_EQ(sent[0].addressee, "bob");
    EXPECT_EQ(sent[0].body, "line one<br>line: two");
    EXPECT_EQ(sent[0].subject, "Re: hi");
    // The subject is the last field and keeps whatever follows.
    EXPECT_EQ(sent[1].subject, "subject\x01with a stray separator");
    // A short record reads as empty fields.
    EXPECT_EQ(sent[2].addressee, "dave");
    EXPECT_EQ(sent[2].body, "");
    EXPECT_TRUE(MailRecords::parseSent("").empty());

    const std::string inbox =
        MailRecords::inbox({{7, "alice", "Hi", "a<br>b", 0}, {12, "bob", "", "", 1772892300}});
    EXPECT_EQ(inbox,
              "alice\x01Hi\x01"
              "1/1/1970 - 0/0\x01"
              "a<br>b\x01"
              "7\x02"
              "bob\x01\x01"
              "3/7/2026 - 14/5\x01\x01"
              "12\x02");

    // A delete names rows by their last field; anything else in a row is not read.
    const std::string rows = inbox +
                             "x\x01y\x02"
                             "a\x01"
                             "b\x01"
                             "c\x01"
                             "d\x01"
                             "-3\x02" +
                             "a\x01"
                             "b\x01"
                             "c\x01"
                             "d\x01"
                             "99999999999999999999\x02";
    EXPECT_EQ(MailRecords::parseDeleted(rows, 10), (std::vector<std::int64_t>{7, 12}));
    EXPECT_EQ(MailRecords::parseDeleted(rows, 1), (std::vector<std::int64_t>{7}));
    EXPECT_EQ(MailRecords::sentTime(1772892300 + 23 * 3600), "3/8/2026 - 13/5");
}

TEST(ProfilePagesTest, TheDefaultPageNamesTheMemberAndTheFirstWebLinkIsFound) {
    Account bob;
    bob.name = "Bob";
    bob.createdAt = 1772892300;
    const std::string page = ProfilePages::defaultPage(bob);
    EXPECT_NE(page.find("<a id='nick' href='#nick'>Bob</a>"), std::string::npos) << page;
    EXPECT_NE(page.find("Member since 2026-03-07."), std::string::npos) << page;

    EXPECT_EQ(ProfilePages::firstWebLink("see <a href='HTTPS://x.example/a?b=1'>x</a>"),
              "HTTPS://x.example/a?b=1");
    EXPECT_EQ(ProfilePages::firstWebLink("https://b.example then http://a.example"),
              "https://b.example");
    EXPECT_EQ(ProfilePages::firstWebLink("<a href=\"http://q.example\">"), "http://q.example");
    for (const char* none : {"", "no link", "ftp://x.example", "http://", "https:// spaced"}) {
        EXPECT_EQ(ProfilePages::firstWebLink(none), "") << none;
    }
    EXPECT_EQ(ProfilePages::firstWebLink("http://" + std::string(400, 'x')), "");
}

class StoreTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::remove(file_);
        db_ = std::make_unique<SqliteDatabase>(file_);
        SqliteAccountStore accounts(*db_);
        for (const char* name : {"alice", "Bob", "b_b", "bxb"}) {
            Account account;
            account.name = name;
            account.passwordHash = "h";
            account.email = std::string(name) + "@example.org";
            ASSERT_TRUE(accounts.create(account));
            ids_.push_back(account.id);
        }
    }

    const std::filesystem::path file_ =
        std::filesystem::path(std::getenv("TAVREN_HOME")) / "stores.db";
    std::unique_ptr<SqliteDatabase> db_;
    std::vector<std::int64_t> ids_;
};

TEST_F(StoreTest, InboxesHoldEachAddresseesOwnCopy) {
    SqliteMailStore mail(*db_);
    mail.deliver({0, "alice", "first", "b1", 100}, {ids_[1], ids_[2]});
    mail.deliver({0, "alice", "second", "b2", 200}, {ids_[1]});
    const auto bobs = mail.inboxOf(ids_[1]);
    ASSERT_EQ(bobs.size(), 2u);
    EXPECT_EQ(bobs[0].subject, "second");
    EXPECT_EQ(bobs[1].subject, "first");
    EXPECT_EQ(mail.countOf(ids_[2]), 1u);

    // Removing names rows; another member's row stays where it is.
    const std::int64_t otherCopy = mail.inboxOf(ids_[2])[0].id;
    EXPECT_EQ(mail.remove(ids_[1], {bobs[1].id, otherCopy, 424242}), 1u);
    EXPECT_EQ(mail.countOf(ids_[1]), 1u);
    EXPECT_EQ(mail.countOf(ids_[2]), 1u);
}

TEST_F(StoreTest, ProfilesAndTheDirectoryFindMembersWithoutWildcards) {
    SqliteProfileStore profiles(*db_);
    EXPECT_FALSE(profiles.pageOf(ids_[0]));
    profiles.save(ids_[0], "100% <b>real</b>", "http://a.example");
    profiles.save(ids_[0], "100% <b>Real</b>", "http://b.example");
    EXPECT_EQ(profiles.pageOf(ids_[0]).value_or(""), "100% <b>Real</b>");

    SqliteMemberDirectory directory(*db_);
    auto names = [](const std::vector<MemberCard>& cards) {
        std::vector<std::string> found;
        for (const MemberCard& card : cards) {
            found.push_back(card.name);
        }
        return found;
    };
    EXPECT_EQ(names(directory.byNamePrefix("B", 10)),
              (std::vector<std::string>{"b_b", "Bob", "bxb"}));
    EXPECT_EQ(names(directory.byNamePrefix("b_", 10)), (std::vector<std::string>{"b_b"}));
    EXPECT_EQ(names(directory.byNamePrefix("b", 2)), (std::vector<std::string>{"b_b", "Bob"}));
    EXPECT_EQ(names(directory.byEmail("BOB@example.org", 10)), (std::vector<std::string>{"Bob"}));
    EXPECT_TRUE(directory.byEmail("bob@example", 10).empty());
    EXPECT_TRUE(directory.byEmail("", 10).empty());
    EXPECT_EQ(names(directory.byProfileText("0% <B>rEAL", 10)),
              (std::vector<std::string>{"alice"}));
    EXPECT_TRUE(directory.byProfileText("_eal", 10).empty());

    const auto alice = directory.byNamePrefix("alice", 1);
    ASSERT_EQ(alice.size(), 1u);
    EXPECT_TRUE(alice[0].hasProfile);
    EXPECT_EQ(alice[0].link, "http://b.example");
    profiles.remove(ids_[0]);
    EXPECT_FALSE(directory.byNamePrefix("alice", 1)[0].hasProfile);
    EXPECT_FALSE(profiles.pageOf(ids_[0]));
}

}  // namespace
}  // namespace tavren::server
