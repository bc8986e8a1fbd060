// What makes an account: the rules its fields follow, the store that keeps it, the password hash.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "server/accounts/AccountRules.h"
#include "server/accounts/PasswordHasher.h"
#include "server/storage/SqliteAccountStore.h"
#include "server/storage/SqliteDatabase.h"
#include "server/storage/StorageError.h"

namespace tavren::server {
namespace {

TEST(AccountRulesTest, NamesPasswordsAndEmailsAtTheEdges) {
    for (const char* good : {"ab", "Alice", "a.b-c_d", "A1234567890123456789", "z9"}) {
        EXPECT_EQ(AccountRules::checkName(good), "") << good;
    }
    for (const char* bad : {"", "a", "1abc", "_abc", "A12345678901234567890", "a b", "a:b", "a;b",
                            "@abc", "*new_user*", "caf\xe9", "a\x01"}) {
        EXPECT_NE(AccountRules::checkName(bad), "") << bad;
    }
    for (const std::string& good :
         {std::string("abcd"), std::string("with blank \xe9"), std::string(64, 'p')}) {
        EXPECT_EQ(AccountRules::checkPassword(good), "") << good;
    }
    for (const std::string& bad : {std::string("abc"), std::string(65, 'p'), std::string("ab:cd"),
                                   std::string("ab;cd"), std::string("ab\ncd")}) {
        EXPECT_NE(AccountRules::checkPassword(bad), "") << bad;
    }
    EXPECT_EQ(AccountRules::checkEmail("a@b"), "");
    for (const char* bad :
         {"", "ab", "@b.c", "a@", "a@b@c", "a b@c.d", "a:b@c.d", "a;b@c", "a,b@c"}) {
        EXPECT_NE(AccountRules::checkEmail(bad), "") << bad;
    }
}

std::filesystem::path home() {
    return std::getenv("TAVREN_HOME");
}

TEST(AccountStoreTest, NamesAreFoundWholeInAnyCaseAndANewerSchemaIsRefused) {
    const auto file = home() / "nested" / "accounts.db";
    {
        SqliteDatabase db(file);  // creates the missing folder
        SqliteAccountStore store(db);
        Account alice;
        alice.name = "Alice";
        alice.passwordHash = "h1";
        ASSERT_TRUE(store.create(alice));
        EXPECT_GT(alice.id, 0);
        Account impostor = alice;
        impostor.name = "ALICE";
        EXPECT_FALSE(store.create(impostor));
        EXPECT_EQ(store.findByName("aLiCe").value_or(Account{}).name, "Alice");
        for (const char* notAlice : {"Alic", "Alice%", "_lice", "Alice "}) {
            EXPECT_FALSE(store.findByName(notAlice)) << notAlice;
        }
        db.execute("PRAGMA user_version=999");
    }
    EXPECT_THROW(SqliteDatabase{file}, StorageError);
    std::filesystem::create_directories(home() / "not-a-file.db");
    EXPECT_THROW(SqliteDatabase{home() / "not-a-file.db"}, StorageError);
}

TEST(PasswordHasherTest, HashesAreSaltedArgon2idAndVerifyOnlyTheirPassword) {
    const std::string first = PasswordHasher::hash("secret1");
    EXPECT_EQ(first.rfind("$argon2id$", 0), 0u) << first;
    EXPECT_NE(first, PasswordHasher::hash("secret1"));
    EXPECT_TRUE(PasswordHasher::verify(first, "secret1"));
    EXPECT_FALSE(PasswordHasher::verify(first, "secret2"));
    EXPECT_FALSE(PasswordHasher::verify("not a hash", "secret1"));
}

}  // namespace
}  // namespace tavren::server
