#include "core/SavedAccounts.h"

#include <algorithm>

#include "config/Settings.h"
#include "core/WireText.h"

namespace tavren {

namespace {
const QChar kNameSeparator = QLatin1Char(':');
const QChar kEntrySeparator = QLatin1Char(';');
}  // namespace

SavedAccounts::SavedAccounts(Settings& settings, QObject* parent)
    : QObject(parent), settings_(settings) {
    load();
}

void SavedAccounts::load() {
    accounts_ = parse(settings_.userString());
    emit changed();
}

QList<SavedAccounts::Account> SavedAccounts::parse(const QString& userString) {
    QList<Account> accounts;
    for (const QString& entry : userString.split(kEntrySeparator, Qt::SkipEmptyParts)) {
        const qsizetype colon = entry.indexOf(kNameSeparator);
        if (colon <= 0) {
            continue;
        }
        Account account{entry.left(colon), entry.mid(colon + 1)};
        const bool duplicate = std::any_of(accounts.begin(), accounts.end(), [&](const Account& a) {
            return a.name.compare(account.name, Qt::CaseInsensitive) == 0;
        });
        if (!duplicate && account.name != newUserName() &&
            !account.password.contains(kNameSeparator)) {
            accounts << account;
        }
    }
    return accounts;
}

QString SavedAccounts::serialize(const QList<Account>& accounts) {
    QStringList entries;
    for (const Account& account : accounts) {
        entries << account.name + kNameSeparator + account.password;
    }
    return entries.join(kEntrySeparator);
}

SavedAccounts::Account SavedAccounts::row(int index) const {
    if (index <= 0 || index > accounts_.size()) {
        return Account{newUserName(), QString()};
    }
    return accounts_.at(index - 1);
}

int SavedAccounts::findRow(const QString& name) const {
    for (int i = 0; i < accounts_.size(); ++i) {
        if (accounts_.at(i).name.compare(name, Qt::CaseInsensitive) == 0) {
            return i + 1;
        }
    }
    return -1;
}

QString SavedAccounts::checkEntry(const QString& name, const QString& password,
                                  int replacingRow) const {
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty()) {
        return QStringLiteral("Please enter the account's name.");
    }
    if (password.isEmpty()) {
        return QStringLiteral("Please enter the account's password.");
    }
    if (trimmed.contains(kNameSeparator) || trimmed.contains(kEntrySeparator) ||
        password.contains(kNameSeparator) || password.contains(kEntrySeparator)) {
        return QStringLiteral("Names and passwords cannot contain \":\" or \";\".");
    }
    if (trimmed.compare(newUserName(), Qt::CaseInsensitive) == 0) {
        return QStringLiteral("That name is reserved.");
    }
    for (const QString& problem :
         {WireText::refusalForWire(trimmed, QStringLiteral("name")),
          WireText::refusalForWire(password, QStringLiteral("password"))}) {
        if (!problem.isEmpty()) {
            return problem;
        }
    }
    const int existing = findRow(trimmed);
    if (existing > 0 && existing != replacingRow) {
        return QStringLiteral("That account is already in the list.");
    }
    return QString();
}

int SavedAccounts::add(const QString& name, const QString& password) {
    if (!checkEntry(name, password).isEmpty()) {
        return -1;
    }
    accounts_.append(Account{name.trimmed(), password});
    save();
    return static_cast<int>(accounts_.size());
}

int SavedAccounts::modify(int row, const QString& name, const QString& password) {
    if (row <= 0 || row > accounts_.size() || !checkEntry(name, password, row).isEmpty()) {
        return -1;
    }
    accounts_[row - 1] = Account{name.trimmed(), password};
    save();
    return row;
}

bool SavedAccounts::remove(int row) {
    if (row <= 0 || row > accounts_.size()) {
        return false;
    }
    accounts_.removeAt(row - 1);
    save();
    return true;
}

int SavedAccounts::markUsed(const QString& name) {
    const int found = findRow(name);
    if (found <= 0) {
        return found;
    }
    if (found != 1) {
        accounts_.move(found - 1, 0);
        save();
    }
    return 1;
}

void SavedAccounts::updatePassword(const QString& name, const QString& password) {
    const int found = findRow(name);
    if (found > 0 && accounts_.at(found - 1).password != password) {
        accounts_[found - 1].password = password;
        save();
    }
}

void SavedAccounts::save() {
    settings_.setUserString(serialize(accounts_));
    emit changed();
}

}  // namespace tavren
