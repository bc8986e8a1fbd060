#include "games/ui/GameWindows.h"

#include <QInputDialog>
#include <QLineEdit>

#include "core/ClientSession.h"
#include "core/Prompter.h"
#include "games/GameSession.h"
#include "games/ui/Game.h"
#include "games/ui/GameCreateTable.h"
#include "games/ui/GameInvite.h"
#include "games/ui/gameList.h"

namespace tavren {

namespace {
const QString kTitle = QStringLiteral("Texas Hold'em");
}

GameWindows::GameWindows(ClientSession& session, Prompter& prompter, QObject* parent)
    : QObject(parent),
      session_(session),
      prompter_(prompter),
      games_(
          std::make_unique<GameSession>(session.server(), session.sounds(), session.formatter())) {
    connect(games_.get(), &GameSession::seated, this, &GameWindows::openTable);
    connect(games_.get(), &GameSession::leftTable, this, &GameWindows::closeTable);
    connect(games_.get(), &GameSession::passwordRequested, this, &GameWindows::askPassword);
    connect(games_.get(), &GameSession::invited, this, &GameWindows::answerInvitation);
    connect(games_.get(), &GameSession::noticeArrived, this,
            [this](const QString&, const QString& text) { prompter_.message(text, kTitle); });
}

GameWindows::~GameWindows() {
    // The windows are top-level (no parent holds them), so they go with this object.
    delete lobby_;
    delete creation_;
    delete invite_;
    for (const auto& window : std::as_const(tables_)) {
        delete window;
    }
    for (const auto& prompt : std::as_const(passwords_)) {
        delete prompt;
    }
}

void GameWindows::bringForward(QWidget& window) {
    window.show();
    window.raise();
    window.activateWindow();
}

gameList* GameWindows::lobby() const {
    return lobby_;
}

GameCreateTable* GameWindows::creation() const {
    return creation_;
}

GameInvite* GameWindows::inviteSender() const {
    return invite_;
}

Game* GameWindows::tableWindow(const QString& table) const {
    return tables_.value(table.toLower());
}

void GameWindows::promptJoinTable() {
    const auto name =
        prompter_.askText(QStringLiteral("Enter Table Name"), QStringLiteral("Join Table"),
                          QStringLiteral("Texas Hold'em Table"));
    if (name && !name->trimmed().isEmpty()) {
        join(name->trimmed(), false);
    }
}

void GameWindows::openLobby() {
    if (!lobby_) {
        lobby_ = new gameList(*games_, session_.store());
        lobby_->setAttribute(Qt::WA_QuitOnClose, false);
        connect(lobby_, &gameList::joinRequested, this, &GameWindows::join);
        connect(lobby_, &gameList::createRequested, this, &GameWindows::openCreation);
    }
    lobby_->refresh();
    bringForward(*lobby_);
}

void GameWindows::openCreation() {
    if (!creation_) {
        creation_ = new GameCreateTable(*games_);
        creation_->setAttribute(Qt::WA_QuitOnClose, false);
    }
    creation_->reset();
    bringForward(*creation_);
}

void GameWindows::openInvite(const QString& user, const QString& table) {
    if (games_->tables().isEmpty()) {
        prompter_.message(QStringLiteral("Sit at a table first, then invite somebody to it."),
                          kTitle);
        return;
    }
    if (!invite_) {
        invite_ = new GameInvite(*games_);
        invite_->setAttribute(Qt::WA_QuitOnClose, false);
    }
    invite_->prepare(user, table);
    bringForward(*invite_);
}

void GameWindows::join(const QString& table, bool locked) {
    if (Game* open = tableWindow(table)) {
        bringForward(*open);
        return;
    }
    if (locked) {
        askPassword(table, QStringLiteral("This table asks for a password."));
        return;
    }
    if (!games_->join(table)) {
        prompter_.message(GameSession::checkTableName(table).isEmpty()
                              ? QStringLiteral("You are not logged in.")
                              : GameSession::checkTableName(table),
                          kTitle);
    }
}

void GameWindows::openTable(const QString& table) {
    Game* window = tableWindow(table);
    if (!window) {
        window = new Game(*games_, table, session_.dataRoot());
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->setAttribute(Qt::WA_QuitOnClose, false);
        connect(window, &Game::inviteRequested, this,
                [this](const QString& name) { openInvite(QString(), name); });
        tables_.insert(table.toLower(), window);
    }
    bringForward(*window);
}

void GameWindows::closeTable(const QString& table, const QString& why) {
    if (QPointer<Game> window = tables_.take(table.toLower())) {
        window->close();
    }
    if (!why.isEmpty()) {
        prompter_.message(why, table);
    }
}

void GameWindows::askPassword(const QString& table, const QString& sentence) {
    QInputDialog* prompt = passwords_.value(table.toLower());
    if (prompt == nullptr) {
        prompt = new QInputDialog;
        passwords_.insert(table.toLower(), prompt);
        prompt->setObjectName(QStringLiteral("tablePassword"));
        prompt->setAttribute(Qt::WA_DeleteOnClose);
        prompt->setAttribute(Qt::WA_QuitOnClose, false);
        prompt->setWindowTitle(QStringLiteral("Table Password"));
        prompt->setTextEchoMode(QLineEdit::Password);
        connect(prompt, &QInputDialog::textValueSelected, this,
                [this, table](const QString& pw) { games_->join(table, pw); });
    }
    prompt->setLabelText(table + QStringLiteral(": ") + sentence);
    prompt->setTextValue(QString());
    prompt->open();  // never exec(): this may run while a frame is handled
    bringForward(*prompt);
}

void GameWindows::answerInvitation(const QString& inviter, const QString& table, bool locked) {
    prompter_.askYesNoCancelLater(
        inviter + QStringLiteral(" invites you to the Texas Hold'em table ") + table +
            QStringLiteral(". Sit down?"),
        QStringLiteral("Table Invitation"), [this, inviter, table, locked](Prompter::Answer a) {
            if (a == Prompter::Answer::Yes) {
                join(table, locked);
            } else {
                games_->decline(table, inviter);
            }
        });
}

}  // namespace tavren
