#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>
#include <memory>

#include "config/WinColor.h"
#include "core/ServerMessage.h"
#include "games/TableState.h"
#include "render/LineTargets.h"

namespace tavren {

class ChatLineFormatter;
class ServerSession;
class SoundPlayer;

// One entry of the table list (7, 1).
struct TableListing {
    QString name;
    int players = 0;
    int seats = 0;
    int smallBlind = 0;
    int bigBlind = 0;
    int buyIn = 0;
    bool locked = false;
    bool playing = false;
};

// The Hold'em lobby and the tables the member sits at: the requests of group 7, and what the
// server's (7, n) messages say, kept per table for the table windows. Table lines (chat, the
// dealer's words) are formatted here and handed to the window through lineAdded(); sounds of
// slots 9-14 play here. Nothing here needs a widget.
class GameSession : public QObject {
    Q_OBJECT
  public:
    static constexpr int kLineSize = 2;
    // The table pane's colour and the colours of its lines (0x00BBGGRR): a dark felt with
    // light text, since the dealer talks on the table itself.
    static constexpr WinColor kFeltColor = 0x00243C14;
    static constexpr WinColor kNameColor = 0x0060D0FF;
    static constexpr WinColor kOwnNameColor = 0x00FFD890;
    static constexpr WinColor kTextColor = 0x00FFFFFF;
    static constexpr WinColor kDealerColor = 0x0090E0B0;

    GameSession(ServerSession& server, SoundPlayer& sounds, const ChatLineFormatter& formatter,
                QObject* parent = nullptr);
    ~GameSession() override;

    QString ownName() const;
    const QVector<TableListing>& listing() const { return listing_; }
    // Tables the member sits at (or is rejoining), by name as the server spells it.
    QStringList tables() const;
    const TableState* table(const QString& name) const;

    // Requests. Each returns false, sending nothing, while offline or when the input cannot be
    // sent (a name with ":" or ";", for instance).
    bool askList();
    bool create(const QString& name, int seats, int smallBlind, int bigBlind, int buyIn,
                const QString& password);
    bool join(const QString& name, const QString& password = QString());
    bool leave(const QString& name);
    bool say(const QString& table, const QString& text);
    // "fold", "check", "call", "bet", "raise" (to `amount` in all), "allin".
    bool act(const QString& table, const QString& move, int amount = 0);
    bool sitOut(const QString& table, bool out);
    bool invite(const QString& user, const QString& table);
    bool decline(const QString& table, const QString& inviter);

    // A name the server takes for a table (1..30 characters, no ":" or ";", no space at
    // either end); empty when fine, else why not.
    static QString checkTableName(const QString& name);
    // The creation form's default name.
    QString defaultTableName() const { return ownName() + QStringLiteral("'s Table"); }

  signals:
    void listChanged();
    void seated(const QString& table);
    void tableChanged(const QString& table);
    void turnOffered(const QString& table);
    // One formatted line for the table's pane.
    void lineAdded(const QString& table, const QString& html);
    // The member is no longer at the table; `why` is empty when they asked to leave.
    void leftTable(const QString& table, const QString& why);
    // A notice for a table whose window is not open (or for no table at all).
    void noticeArrived(const QString& table, const QString& text);
    void passwordRequested(const QString& table, const QString& sentence);
    void invited(const QString& inviter, const QString& table, bool locked);

  private:
    class Pane;

    void onMessage(const ServerMessage& m);
    void onList(const ServerMessage& m);
    void onSeated(const ServerMessage& m);
    void onLeft(const ServerMessage& m);
    void onState(const ServerMessage& m);
    void onChat(const ServerMessage& m);
    void onEvent(const ServerMessage& m);
    void onTurn(const ServerMessage& m);
    void onNotice(const ServerMessage& m);
    void onPassword(const ServerMessage& m);
    void onInvitation(const ServerMessage& m);
    void onLoginAccepted();

    TableState* find(const QString& name);
    void dealerLine(const QString& table, const QString& text);
    void showLine(const QString& table, const QString& label, QString text, WinColor nameColor,
                  WinColor textColor);
    bool send(const QString& payload, protocol::CodePair code);

    ServerSession& server_;
    SoundPlayer& sounds_;
    const ChatLineFormatter& formatter_;
    QVector<TableListing> listing_;
    QHash<QString, TableState> tables_;  // by lower-case name
    QHash<QString, int> blindsSeen_;     // per table: blinds posted in the current hand
};

}  // namespace tavren
