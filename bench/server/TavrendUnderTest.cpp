#include "TavrendUnderTest.h"

#include <fcntl.h>
#include <signal.h>
#include <sodium.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include "server/storage/SqliteAccountStore.h"
#include "server/storage/SqliteDatabase.h"

extern char** environ;

namespace tavren::bench {

namespace {

std::string readFile(const std::filesystem::path& file) {
    std::ifstream in(file);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

void TavrendUnderTest::createAccounts(const std::filesystem::path& database, int members) {
    if (sodium_init() < 0) {
        throw std::runtime_error("libsodium could not be initialised");
    }
    char hash[crypto_pwhash_STRBYTES];
    const std::string password = kPassword;
    if (crypto_pwhash_str_alg(hash, password.data(), password.size(), crypto_pwhash_OPSLIMIT_MIN,
                              crypto_pwhash_MEMLIMIT_MIN, crypto_pwhash_ALG_ARGON2ID13) != 0) {
        throw std::runtime_error("cannot hash the benchmark password");
    }
    server::SqliteDatabase db(database);
    server::SqliteAccountStore accounts(db);
    db.inTransaction([&] {
        for (int i = -1; i < members; ++i) {
            server::Account account;
            account.name = i < 0 ? "sender" : "m" + std::to_string(i);
            account.passwordHash = hash;
            accounts.create(account);
        }
    });
}

TavrendUnderTest::TavrendUnderTest(const std::filesystem::path& binary,
                                   const std::filesystem::path& folder, int members,
                                   const std::vector<std::string>& extraArguments) {
    const auto database = folder / "bench.db";
    const auto logFile = folder / "tavrend.log";
    createAccounts(database, members);
    std::vector<std::string> arguments{
        binary.string(), "--listen", "127.0.0.1:0", "--db", database.string(),
        // Nothing but the fan-out may hold the load back: no pacing, no meters, no pings, room
        // for every member on one address and in one channel.
        "--frame-rate", "1000000", "--flood-limit", "1000000", "--flood-lines", "1000000",
        "--flood-interval", "0.01", "--max-per-address", "100000", "--queue-limit", "1000000",
        "--ping-interval", "3600", "--login-timeout", "3600", "--max-channel-members", "40000",
        // Every member connects from 127.0.0.1, and all of them connect within a second.
        "--connect-rate", "1000000", "--connect-burst", "1000000"};
    arguments.insert(arguments.end(), extraArguments.begin(), extraArguments.end());
    std::vector<char*> argv;
    for (std::string& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, logFile.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    const int failed = posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) {
        throw std::runtime_error("cannot start " + binary.string());
    }
    static const std::regex listening("listening on \\S+:(\\d+)\\n");
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    std::string log;
    std::smatch match;
    while (!std::regex_search(log = readFile(logFile), match, listening)) {
        if (std::chrono::steady_clock::now() > deadline) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
            throw std::runtime_error("tavrend did not start: " + log);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    port_ = static_cast<std::uint16_t>(std::stoi(match[1].str()));
}

TavrendUnderTest::~TavrendUnderTest() {
    if (pid_ > 0) {
        kill(pid_, SIGTERM);
        int status = 0;
        waitpid(pid_, &status, 0);
    }
}

}  // namespace tavren::bench
