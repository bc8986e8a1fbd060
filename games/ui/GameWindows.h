#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <memory>

class QInputDialog;

namespace tavren {

class ClientSession;
class Game;
class GameCreateTable;
class GameInvite;
class GameSession;
class Prompter;
class gameList;

// The Hold'em windows and the game session behind them: the lobby, the creation form and the
// invitation sender, made on first use; a table window per table the member sits at, opened
// when the server seats the member and closed when the seat goes; the password prompt a
// protected table asks for; and the question an invitation asks. Nothing here waits: what the
// server sends opens windows and returns.
class GameWindows : public QObject {
    Q_OBJECT
  public:
    GameWindows(ClientSession& session, Prompter& prompter, QObject* parent = nullptr);
    ~GameWindows() override;

    GameSession& games() { return *games_; }

    // The main menu's items.
    void promptJoinTable();  // "Enter Table Name" / "Join Table" / "Texas Hold'em Table"
    void openLobby();        // asks for the list and shows it
    void openCreation();     // the member's name + "'s Table" to start with
    // Invites `user` (empty: typed in the form) to a table the member sits at.
    void openInvite(const QString& user = QString(), const QString& table = QString());

    gameList* lobby() const;
    GameCreateTable* creation() const;
    GameInvite* inviteSender() const;
    Game* tableWindow(const QString& table) const;

  private:
    void join(const QString& table, bool locked);
    void openTable(const QString& table);
    void closeTable(const QString& table, const QString& why);
    void askPassword(const QString& table, const QString& sentence);
    void answerInvitation(const QString& inviter, const QString& table, bool locked);
    static void bringForward(QWidget& window);

    ClientSession& session_;
    Prompter& prompter_;
    std::unique_ptr<GameSession> games_;
    QPointer<gameList> lobby_;
    QPointer<GameCreateTable> creation_;
    QPointer<GameInvite> invite_;
    QHash<QString, QPointer<Game>> tables_;  // by lower-case name
    QHash<QString, QPointer<QInputDialog>> passwords_;
};

}  // namespace tavren
