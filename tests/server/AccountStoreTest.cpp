#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>

#include "server/PasswordHasher.h"
#include "server/SqliteAccountStore.h"
#include "server/SqliteDatabase.h"
#include "server/StorageError.h"

namespace tavren::server {
namespace {

class AccountStoreTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const char* home = std::getenv("TAVREN_HOME");
        folder_ = std::filesystem::path(home ? home : "/tmp") / "account-store-test";
        std::filesystem::remove_all(folder_);
        file_ = folder_ / "nested" / "accounts.db";
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::filesystem::path folder_;
    std::filesystem::path file_;
};

TEST_F(AccountStoreTest, NamesAreUniqueWithoutRegardToCaseAndChangesPersist) {
    {
        SqliteDatabase db(file_);  // creates the missing folder
        SqliteAccountStore store(db);
        Account alice;
        alice.name = "Alice";
        alice.passwordHash = "h1";
        alice.staffLevel = 2;
        ASSERT_TRUE(store.create(alice));
        EXPECT_GT(alice.id, 0);
        EXPECT_GT(alice.createdAt, 0);

        Account impostor;
        impostor.name = "ALICE";
        impostor.passwordHash = "h2";
        EXPECT_FALSE(store.create(impostor));

        store.setEmail(alice.id, "a@example.org");
        store.setPasswordHash(alice.id, "h3");
        store.setNicknameFormat(alice.id, "fmt");
    }
    SqliteDatabase db(file_);
    SqliteAccountStore store(db);
    const auto found = store.findByName("aLiCe");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->name, "Alice");
    EXPECT_EQ(found->passwordHash, "h3");
    EXPECT_EQ(found->email, "a@example.org");
    EXPECT_EQ(found->nicknameFormat, "fmt");
    EXPECT_EQ(found->staffLevel, 2);
    EXPECT_FALSE(store.findByName("Alic"));
    EXPECT_FALSE(store.findByName("Alice%"));
}

TEST_F(AccountStoreTest, UsesWriteAheadLogAndRefusesANewerSchema) {
    {
        SqliteDatabase db(file_);
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(db.handle(), "PRAGMA journal_mode", -1, &statement, nullptr);
        ASSERT_EQ(sqlite3_step(statement), SQLITE_ROW);
        EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)), "wal");
        sqlite3_finalize(statement);
        db.execute("PRAGMA user_version=999");
    }
    EXPECT_THROW(SqliteDatabase{file_}, StorageError);
    std::filesystem::create_directories(folder_ / "not-a-file.db");
    EXPECT_THROW(SqliteDatabase{folder_ / "not-a-file.db"}, StorageError);
}

TEST(PasswordHasherTest, HashesAreSaltedArgon2idAndVerifyOnlyTheirPassword) {
    const std::string first = PasswordHasher::hash("secret1");
    const std::string second = PasswordHasher::hash("secret1");
    EXPECT_EQ(first.rfind("$argon2id$", 0), 0u) << first;
    EXPECT_NE(first, second);
    EXPECT_TRUE(PasswordHasher::verify(first, "secret1"));
    EXPECT_TRUE(PasswordHasher::verify(second, "secret1"));
    EXPECT_FALSE(PasswordHasher::verify(first, "secret2"));
    EXPECT_FALSE(PasswordHasher::verify(first, ""));
    EXPECT_FALSE(PasswordHasher::verify("not a hash", "secret1"));
}

}  // namespace
}  // namespace tavren::server
