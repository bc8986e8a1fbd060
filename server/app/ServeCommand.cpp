#include "server/app/ServeCommand.h"

#include <asio/io_context.hpp>
#include <asio/signal_set.hpp>
#include <csignal>
#include <functional>
#include <iostream>
#include <optional>

#include "server/accounts/AccountRequests.h"
#include "server/accounts/PasswordGate.h"
#include "server/accounts/PasswordWorker.h"
#include "server/app/CommandLine.h"
#include "server/base/Log.h"
#include "server/base/NewsFile.h"
#include "server/contacts/BuddyRequests.h"
#include "server/contacts/DirectConnectionRequests.h"
#include "server/contacts/LocateRequests.h"
#include "server/contacts/MailboxRequests.h"
#include "server/contacts/PresenceService.h"
#include "server/contacts/PrivateMessageRequests.h"
#include "server/contacts/ProfileRequests.h"
#include "server/contacts/SearchRequests.h"
#include "server/contacts/StatusLineRequests.h"
#include "server/holdem/TableService.h"
#include "server/net/LocalPresenceHub.h"
#include "server/net/Server.h"
#include "server/net/TlsCredentials.h"
#include "server/rooms/ChannelGate.h"
#include "server/rooms/ChannelInvitations.h"
#include "server/rooms/ChannelRequests.h"
#include "server/rooms/ChannelVotes.h"
#include "server/rooms/ModerationCommands.h"
#include "server/rooms/OnlineMembers.h"
#include "server/rooms/RoomRequests.h"
#include "server/rooms/RoomService.h"
#include "server/rooms/Sanctions.h"
#include "server/rooms/ServerCommands.h"
#include "server/session/FeatureTable.h"
#include "server/session/SessionHandler.h"
#include "server/session/SessionServices.h"
#include "server/storage/SqliteAccountStore.h"
#include "server/storage/SqliteBuddyStore.h"
#include "server/storage/SqliteChannelStore.h"
#include "server/storage/SqliteChipBank.h"
#include "server/storage/SqliteDatabase.h"
#include "server/storage/SqliteMailStore.h"
#include "server/storage/SqliteMemberDirectory.h"
#include "server/storage/SqliteModerationStore.h"
#include "server/storage/SqliteProfileStore.h"
#include "server/storage/WalCheckpointer.h"

namespace tavren::server {

int ServeCommand::run(const CommandLine& commandLine) {
    const ServerConfig& config = commandLine.config;
    SqliteDatabase db(config.databasePath);
    SqliteAccountStore accounts(db);
    SqliteChannelStore channels(db);
    SqliteBuddyStore buddies(db);
    SqliteModerationStore moderationStore(db);
    SqliteMailStore mailStore(db);
    SqliteProfileStore profileStore(db);
    SqliteMemberDirectory memberDirectory(db);
    SqliteChipBank chipBank(db);
    Log::info("database " + config.databasePath.string());
    TlsCredentials tls = TlsCredentials::forServer(config);
    Log::info("TLS certificate " + tls.certificateFile().string() + ", SHA-256 fingerprint " +
              tls.current()->fingerprint() + (config.tls.required ? " (encryption required)" : ""));
    // The disk is waited for on the checkpointer's thread, never on the network thread.
    WalCheckpointer checkpointer(config.databasePath, config.checkpointInterval);
    db.leaveCheckpointsToOthers();

    asio::io_context io(1);
    LocalPresenceHub presence(io.get_executor());
    PasswordWorker passwordWorker;
    PasswordGate passwords(passwordWorker, config.passwords, io.get_executor());

    PresenceService buddyPresence(presence, config.contacts, io.get_executor());
    AccountRequests accountRequests(accounts, passwords);
    MailboxRequests mailbox(accounts, mailStore, presence, config.mail);
    StatusLineRequests statusLines(buddyPresence, config.contacts.maxAwayText);
    OnlineMembers online;
    Sanctions sanctions(moderationStore);
    ChannelInvitations invitations;
    ChannelGate gate(sanctions, invitations);
    RoomService rooms(channels, presence, buddyPresence, gate, config.rooms, io.get_executor());
    ModerationCommands moderation(rooms, accounts, sanctions, online);
    ChannelVotes votes(rooms, config.rooms.voteTime, io.get_executor());
    ServerCommands serverCommands(rooms, accounts, presence, moderation, votes,
                                  config.messageOfTheDay, config.rooms.maxTopic);
    ChannelRequests channelRequests(rooms, accounts, online, invitations);
    RoomRequests roomRequests(rooms, serverCommands, config.rooms);
    PrivateMessageRequests privateMessages(accounts, presence, config.rooms);
    DirectConnectionRequests directConnections(accounts, presence, config.contacts);
    LocateRequests locate(accounts, presence, rooms);
    BuddyRequests buddyRequests(buddies, buddyPresence, config.contacts);
    ProfileRequests profiles(accounts, profileStore, config.directory);
    SearchRequests search(memberDirectory, presence, rooms, config.directory);
    TableService tables(chipBank, presence, config.holdem, config.rooms.maxLine, io.get_executor());
    FeatureTable features;
    // First in, last out: moderation reaches every member for as long as any feature knows them.
    features.add(online);
    features.add(accountRequests);
    features.add(mailbox);
    features.add(statusLines);
    features.add(roomRequests);
    features.add(channelRequests);
    features.add(privateMessages);
    features.add(directConnections);
    features.add(locate);
    // After the rooms: the buddy list follows the line meter at login, and a member who leaves
    // is offline to the watchers before its channels are left (which then tell nobody).
    features.add(buddyRequests);
    features.add(profiles);
    features.add(search);
    features.add(tables);
    rooms.start();
    tables.start();  // chips left on tables by a stop go back to their banks

    std::optional<NewsFile> news;
    if (!config.newsFile.empty()) {
        news.emplace(config.newsFile);
        news->current();  // says in the log now what the first login will get
    }
    const SessionServices services{
        config, accounts, presence, passwords, features, &sanctions, news ? &*news : nullptr};
    Server server(io, config, [&services](ClientLink& link, std::weak_ptr<ClientLink> shared) {
        return std::make_unique<SessionHandler>(services, link, std::move(shared));
    });
    server.setTls(&tls);
    // SIGHUP: the certificate files are read again (renewed by the operator, say); members who
    // are connected stay, new connections get the new certificate.
    asio::signal_set reloadSignal(io, SIGHUP);
    std::function<void()> awaitReload = [&] {
        reloadSignal.async_wait([&](const asio::error_code& error, int) {
            if (error) {
                return;
            }
            std::string why;
            if (tls.reload(why)) {
                Log::info("TLS certificate read again, SHA-256 fingerprint " +
                          tls.current()->fingerprint());
            } else {
                Log::warn("TLS certificate not read again, the old one stays: " + why);
            }
            awaitReload();
        });
    };
    awaitReload();
    asio::signal_set signals(io, SIGINT, SIGTERM);
    signals.async_wait([&](const asio::error_code& error, int signal) {
        if (!error) {
            Log::info("stopping on signal " + std::to_string(signal));
            // Password work queued behind a stopping server is skipped, not waited for.
            passwords.shutDown();
            // Members going offline because the server stops tell nobody: everybody goes.
            buddyPresence.stop();
            reloadSignal.cancel();
            server.stop();  // every member leaves every channel on the way out
            rooms.stop();
            votes.stop();
            tables.stop();
        }
    });
    server.start();
    // Tools and tests read the bound address from here, which matters when the port was 0.
    const auto endpoint = server.localEndpoint();
    std::cout << "listening on " << endpoint.address().to_string() << ":" << endpoint.port()
              << std::endl;
    io.run();
    Log::info("stopped");
    return 0;
}

}  // namespace tavren::server
