#include "pm/DirectLinks.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include "config/Settings.h"
#include "core/Prompter.h"
#include "core/ServerSession.h"
#include "core/protocol/Catalogue.h"
#include "media/ScreenCapture.h"
#include "pm/PeerCertificate.h"
#include "pm/PrivateChats.h"
#include "pm/PrivateMessage.h"
#include "pm/ReceivedFileName.h"
#include "pm/TransferMarkup.h"
#include "render/ChatLineFormatter.h"
#include "render/FormatLines.h"

namespace tavren {

namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;

namespace {
constexpr std::size_t kMaxKeptFingerprints = 100;
constexpr qsizetype kFingerprintFields = 32;
}  // namespace

DirectLinks::DirectLinks(ServerSession& server, Settings& settings, PrivateChats& chats,
                         const ChatLineFormatter& formatter, Prompter& prompter,
                         const QString& dataRoot, QObject* parent)
    : QObject(parent),
      server_(server),
      settings_(settings),
      chats_(chats),
      formatter_(formatter),
      prompter_(prompter),
      dataRoot_(dataRoot),
      downloadFolder_(QDir::cleanPath(dataRoot + QStringLiteral("/downloaded"))),
      opener_([](const QString& path) { QDesktopServices::openUrl(QUrl::fromLocalFile(path)); }) {
    server_.dispatcher().route(in::kDirectConnection,
                               [this](const ServerMessage& m) { onDirectConnection(m); });
    connect(&chats_, &PrivateChats::conversationClosed, this, [this](int, int index) {
        const auto found = links_.find(index);
        if (found == links_.end()) {
            return;
        }
        DirectLink* gone = found->second;
        links_.erase(found);
        gone->conversationClosing();
        gone->disconnect(this);
        gone->deleteLater();
    });
    connect(&chats_, &PrivateChats::captionChanged, this, [this](int position) {
        if (DirectLink* changed = linkForIndex(chats_.conversation(position).index)) {
            changed->setPeer(chats_.conversation(position).user);
        }
    });
    // The accept button blinks with the typing timer's tick.
    connect(&chats_.typingTimer(), &QTimer::timeout, this, [this] {
        for (const auto& [index, each] : links_) {
            each->blink();
        }
    });
}

DirectLinks::~DirectLinks() {
    for (const auto& [index, each] : links_) {
        each->conversationClosing();
        each->disconnect(this);
    }
}

DirectLink* DirectLinks::linkForIndex(int index) const {
    const auto found = links_.find(index);
    return found == links_.end() ? nullptr : found->second;
}

int DirectLinks::indexOf(const DirectLink& link) const {
    for (const auto& [index, each] : links_) {
        if (each == &link) {
            return index;
        }
    }
    return -1;
}

DirectLink* DirectLinks::link(int position) {
    if (position < 0 || position >= chats_.count()) {
        return nullptr;
    }
    const Conversation& conversation = chats_.conversation(position);
    DirectLink* found = linkForIndex(conversation.index);
    if (found == nullptr) {
        found = make(conversation.index, conversation.user);
    }
    applyOptions(*found);
    return found;
}

DirectLink* DirectLinks::make(int index, const QString& peer) {
    auto* made = new DirectLink(peer, downloadFolder_, prompter_, this);
    links_[index] = made;
    connect(made, &DirectLink::handshake, this,
            [this, made](int kind, const QString& argument) { send(*made, kind, argument); });
    connect(made, &DirectLink::line, this,
            [this, made](DirectLink::Speaker speaker, const QString& text) {
                showLine(*made, speaker, text);
            });
    connect(
        made, &DirectLink::fileShown, this,
        [this, made](const QString& name, const QString& path) { showFile(*made, name, path); });
    connect(made, &DirectLink::changed, this, [this, index] { emit linkChanged(index); });
    connect(made, &DirectLink::progressChanged, this,
            [this, index] { emit progressChanged(index); });
    return made;
}

void DirectLinks::applyOptions(DirectLink& link) {
    const SettingsValues& values = settings_.values();
    DirectLink::Options options;
    options.ownName = chats_.ownName();
    options.lowerPort = values.lowerRange;
    options.upperPort = values.upperRange;
    options.tunnel = values.tunnel;
    options.autoAccept = values.autoAccept;
    options.encrypt = encrypting_;
    link.setOptions(options);
}

bool DirectLinks::mayAsk(int position, DirectLink& link) {
    if (link.state() != DirectLink::State::Connect) {
        return true;
    }
    if (chats_.conversation(position).user.compare(chats_.ownName(), Qt::CaseInsensitive) == 0) {
        prompter_.message(QStringLiteral("You may not connect with yourself!"),
                          QStringLiteral("Error"), Prompter::Icon::Warning);
        return false;
    }
    if (!server_.online()) {
        showLine(link, DirectLink::Speaker::Connection,
                 QStringLiteral("You are not connected: a direct connection is set up through "
                                "the server."));
        return false;
    }
    return true;
}

void DirectLinks::activateLink(int position) {
    DirectLink* chosen = link(position);
    if (chosen != nullptr && mayAsk(position, *chosen)) {
        chosen->activateLink();
    }
}

bool DirectLinks::pressButton(int position) {
    DirectLink* chosen = link(position);
    return chosen == nullptr || chosen->pressButton();
}

bool DirectLinks::sendFile(int position, const QString& path) {
    DirectLink* chosen = link(position);
    return chosen != nullptr && mayAsk(position, *chosen) && chosen->sendFile(path);
}

bool DirectLinks::sendDropped(int position, const QList<QUrl>& urls) {
    if (urls.size() != 1) {
        prompter_.message(QStringLiteral("You may only drag 1 file at a time"),
                          QStringLiteral("Transfer Error:"), Prompter::Icon::Warning);
        return false;
    }
    const QString path = urls.first().toLocalFile();
    if (QFileInfo(path).isDir()) {
        prompter_.message(QStringLiteral("Directories can't be transfered"),
                          QStringLiteral("Transfer Error:"), Prompter::Icon::Warning);
        return false;
    }
    return sendFile(position, path);
}

void DirectLinks::sendScreenCapture(int position, const QImage& screen, const QRect& area) {
    if (position < 0 || position >= chats_.count()) {
        return;
    }
    const int index = chats_.conversation(position).index;
    auto* capture = new ScreenCapture(dataRoot_, prompter_, this);
    connect(capture, &ScreenCapture::captured, this, [this, capture, index](const QString& path) {
        capture->deleteLater();
        emit screenCaptured(path);
        const int now = chats_.positionOfIndex(index);
        if (now >= 0) {
            sendFile(now, path);
        }
    });
    connect(capture, &ScreenCapture::failed, this, [this, capture] {
        capture->deleteLater();
        emit screenCaptured(QString());
    });
    capture->start(screen, area, chats_.ownName());
}

void DirectLinks::send(DirectLink& link, int kind, const QString& argument) {
    if (server_.online()) {
        server_.link().SendPacket(
            link.peer() + QLatin1Char(':') + QString::number(kind) + QLatin1Char(':') + argument,
            out::kDirectConnection);
    }
}

void DirectLinks::showLine(DirectLink& link, DirectLink::Speaker speaker, const QString& text) {
    const SettingsValues& values = settings_.values();
    QString label;
    WinColor nameColor = values.color(ColorScheme::HostNick);
    WinColor textColor = values.color(ColorScheme::HostText);
    switch (speaker) {
        case DirectLink::Speaker::Own:
            label = chats_.ownName() + QLatin1Char(':');
            nameColor = values.color(ColorScheme::OwnNick);
            textColor = values.color(ColorScheme::OwnText);
            break;
        case DirectLink::Speaker::Peer:
            label = link.peer() + QLatin1Char(':');
            nameColor = values.color(ColorScheme::TheirNick);
            textColor = values.color(ColorScheme::TheirText);
            break;
        case DirectLink::Speaker::Connection:
            label = QStringLiteral("Direct Connection:");
            break;
    }
    QString shown = text;
    FormatPrivateLine(formatter_, chats_, link.peer(), label, shown, nameColor, textColor, false,
                      PrivateChats::kLineSize);
}

void DirectLinks::showFile(DirectLink& link, const QString& name, const QString& path) {
    QSize size;
    if (ReceivedFileName::isPicture(name)) {
        size = QImageReader(path).size();
    }
    shown_.add(path);
    // Not a chat line: the markup is fixed, and the formatter would turn smiley codes or web
    // addresses in a file name into pictures and links.
    chats_.appendPrivateLine(link.peer(), TransferMarkup::forFile(name, path, size));
}

bool DirectLinks::openLink(const QUrl& link) {
    const QString path = shown_.fileFor(link);
    if (path.isEmpty()) {
        return false;
    }
    if (!QFileInfo::exists(path)) {
        prompter_.message(QStringLiteral("Error: File Not Found:") + QLatin1Char('\n') +
                              QDir::toNativeSeparators(path),
                          QStringLiteral("Error: File Not Found!"), Prompter::Icon::Critical);
        return true;
    }
    opener_(path);
    return true;
}

void DirectLinks::saveCopy(const QString& shownPath, const QString& target) {
    if (!shown_.contains(shownPath) || target.isEmpty()) {
        return;
    }
    if (QFileInfo(target).suffix().isEmpty()) {
        prompter_.message(QStringLiteral("Error in filename... No Extention.."),
                          QStringLiteral("Error"), Prompter::Icon::Critical);
        return;
    }
    const auto copy = [this, shownPath, target] {
        if (QFileInfo(target).exists() && !QFile::remove(target)) {
            prompter_.message(
                QStringLiteral("%1 could not be replaced.").arg(QDir::toNativeSeparators(target)),
                QStringLiteral("Error"), Prompter::Icon::Critical);
            return;
        }
        if (!QFile::copy(shownPath, target)) {
            prompter_.message(
                QStringLiteral("%1 could not be written.").arg(QDir::toNativeSeparators(target)),
                QStringLiteral("Error"), Prompter::Icon::Critical);
        }
    };
    if (!QFileInfo::exists(target)) {
        copy();
        return;
    }
    prompter_.askYesNoCancelLater(QStringLiteral("File already exists, do you wish to overwrite?"),
                                  QStringLiteral("Overwrite?"), [copy](Prompter::Answer answer) {
                                      if (answer == Prompter::Answer::Yes) {
                                          copy();
                                      }
                                  });
}

void DirectLinks::onDirectConnection(const ServerMessage& message) {
    // sender ":" kind ":" argument ":" address; the address (IPv6) may hold ":" itself.
    const QStringList fields = message.payload.split(QLatin1Char(':'));
    if (fields.size() < 3) {
        return;
    }
    const QString sender = fields.at(0);
    bool isNumber = false;
    const int kind = fields.at(1).toInt(&isNumber);
    if (!PrivateMessage::isPlausibleName(sender) || !isNumber || kind < DirectLink::kRequest ||
        kind > DirectLink::kFingerprint || fields.at(1).size() != 1 || chats_.isIgnored(sender)) {
        return;
    }
    QString argument = fields.at(2);
    QString address = fields.mid(3).join(QLatin1Char(':'));
    if (kind == DirectLink::kFingerprint) {
        // A fingerprint is 32 hex pairs joined by ":", so it spans 32 fields.
        argument = fields.mid(2, kFingerprintFields).join(QLatin1Char(':'));
        address = fields.mid(2 + kFingerprintFields).join(QLatin1Char(':'));
    }
    // The sender's fingerprint, if one came right before this handshake: it counts for this one
    // only.
    const auto kept = fingerprints_.find(sender.toLower());
    QString fingerprint;
    if (kept != fingerprints_.end()) {
        fingerprint = kept->second;
        fingerprints_.erase(kept);
    }
    int position = chats_.positionOf(sender);
    if (position < 0) {
        if (kind == DirectLink::kFingerprint) {
            // Kept for the offer that follows; one per member, and a server's worth at most.
            if (fingerprints_.size() < kMaxKeptFingerprints &&
                PeerCertificate::isFingerprint(argument)) {
                fingerprints_[sender.toLower()] = argument;
            }
            return;
        }
        // Only an offer opens a conversation; the rest belong to one that is gone.
        if (kind != DirectLink::kRequest || settings_.values().ignorePms) {
            return;
        }
        position = chats_.openForPeer(sender);
        if (position < 0) {
            return;
        }
    }
    if (DirectLink* target = link(position)) {
        if (!fingerprint.isEmpty()) {
            target->onHandshake(DirectLink::kFingerprint, fingerprint, address);
        }
        target->onHandshake(kind, argument, address);
    }
}

}  // namespace tavren
