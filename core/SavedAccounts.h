#pragma once

#include <QList>
#include <QObject>
#include <QString>

namespace tavren {

class Settings;

// The login window's list of saved accounts, kept in the settings store under "Users" /
// "UserString".
//
// Layout of "UserString": one entry per account, "name:password", entries separated by ";",
// the most recently used account first, e.g. "alice:secret;bob:hunter2". The password is kept
// exactly as the user typed it, in clear text, because the server expects it so at every login;
// anyone who can read the user's settings can read it. Names and passwords may therefore hold
// neither ":" nor ";" (the server refuses both anyway). Entries that do not parse are skipped.
//
// Row 0 is always the pseudo-account "*new_user*", which stands for someone without an account
// and is never stored.
class SavedAccounts : public QObject {
    Q_OBJECT
  public:
    struct Account {
        QString name;
        QString password;
        bool operator==(const Account&) const = default;
    };

    static QString newUserName() { return QStringLiteral("*new_user*"); }

    explicit SavedAccounts(Settings& settings, QObject* parent = nullptr);

    // Reads "UserString" again (at start-up; the list keeps itself in step afterwards).
    void load();

    // The rows as shown: "*new_user*" first, then the saved accounts.
    int rowCount() const { return static_cast<int>(accounts_.size()) + 1; }
    Account row(int index) const;
    bool isNewUserRow(int index) const { return index == 0; }
    // The row of a saved name (letter case ignored), or -1.
    int findRow(const QString& name) const;

    // Why an entry cannot be saved, or an empty string. `replacingRow` is the row being edited,
    // which may keep its own name.
    QString checkEntry(const QString& name, const QString& password, int replacingRow = -1) const;
    // Each returns the row of the entry afterwards, or -1 when checkEntry refused it.
    int add(const QString& name, const QString& password);
    int modify(int row, const QString& name, const QString& password);
    bool remove(int row);
    // Moves the account to the top of the stored list after a login, so that it comes first
    // next time. Returns its new row.
    int markUsed(const QString& name);
    // Keeps the list's password in step after the server confirmed a change.
    void updatePassword(const QString& name, const QString& password);

    static QList<Account> parse(const QString& userString);
    static QString serialize(const QList<Account>& accounts);

  signals:
    void changed();

  private:
    void save();

    Settings& settings_;
    QList<Account> accounts_;
};

}  // namespace tavren
