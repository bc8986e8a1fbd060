#include "server/app/AccountAddCommand.h"

#include <ostream>

#include "server/accounts/AccountRules.h"
#include "server/accounts/PasswordHasher.h"
#include "server/app/CommandLine.h"
#include "server/storage/SqliteAccountStore.h"
#include "server/storage/SqliteDatabase.h"

namespace tavren::server {

int AccountAddCommand::run(const CommandLine& commandLine, std::ostream& out,
                           std::ostream& errors) {
    std::string problem = AccountRules::checkName(commandLine.accountName);
    if (problem.empty()) {
        problem = AccountRules::checkPassword(commandLine.accountPassword);
    }
    if (problem.empty() && !commandLine.accountEmail.empty()) {
        problem = AccountRules::checkEmail(commandLine.accountEmail);
    }
    if (!problem.empty()) {
        errors << "tavrend: account not added: " << problem << "\n";
        return 1;
    }

    try {
        SqliteDatabase db(commandLine.config.databasePath);
        SqliteAccountStore store(db);
        Account account;
        account.name = commandLine.accountName;
        account.passwordHash = PasswordHasher::hash(commandLine.accountPassword);
        account.email = commandLine.accountEmail;
        account.staffLevel = commandLine.staffLevel;
        if (!store.create(account)) {
            errors << "tavrend: account not added: the name \"" << commandLine.accountName
                   << "\" is already taken\n";
            return 1;
        }
        out << "account \"" << account.name << "\" added";
        if (account.staffLevel > 0) {
            out << " with staff level " << account.staffLevel;
        }
        out << "\n";
        return 0;
    } catch (const std::exception& error) {
        errors << "tavrend: account not added: " << error.what() << "\n";
        return 2;
    }
}

}  // namespace tavren::server
