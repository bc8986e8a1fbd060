#include "rooms/RoomModeration.h"

#include <array>

#include "core/Prompter.h"
#include "rooms/RoomSession.h"

namespace tavren {

namespace {

const QString kNoReason = QStringLiteral("No Reason");

// An item that asks for a text: the box's title, prompt and default, and the command word.
struct ReasonItem {
    const char* item;
    const char* title;
    const char* prompt;  // followed by the member's name
    const char* word;
};

constexpr std::array<ReasonItem, 4> kReasonItems = {{
    {"kick", "Kick Reason", "Enter reason for kicking: ", "/kick "},
    {"mban", "Ban Reason", "Enter reason for baning: ", "/ban "},
    {"chanban", "Channel Ban Reason", "Enter reason for channel baning: ", "/chanban "},
    {"subnetban", "Ban Reason", "Enter reason for Subnet-Baning: ", "/subban "},
}};

const ReasonItem* reasonItem(const QString& item) {
    for (const ReasonItem& each : kReasonItems) {
        if (item == QLatin1String(each.item)) {
            return &each;
        }
    }
    return nullptr;
}

QString promptFor(const ReasonItem& item, const QString& name) {
    QString prompt = QLatin1String(item.prompt) + name;
    if (qstrcmp(item.item, "subnetban") == 0) {
        prompt +=
            QStringLiteral("\r\n\r\nNote: Subnet ban is only used for proxy flooding control..");
    }
    return prompt;
}

}  // namespace

std::optional<QString> RoomModeration::command(const QString& item, const QString& name,
                                               const std::optional<QString>& answer) {
    const QString trimmed = answer.value_or(QString()).trimmed();
    if (trimmed.isEmpty()) {
        return std::nullopt;
    }
    if (const ReasonItem* reason = reasonItem(item)) {
        return QLatin1String(reason->word) + name + QLatin1Char(':') + trimmed;
    }
    if (item == QLatin1String("voter")) {
        return QStringLiteral("/vote ") + trimmed;
    }
    return std::nullopt;
}

bool RoomModeration::onMemberItem(const QString& item, const QString& name) {
    if (const ReasonItem* reason = reasonItem(item)) {
        const auto answer =
            prompter_.askText(promptFor(*reason, name), QLatin1String(reason->title), kNoReason);
        const auto text = command(item, name, answer);
        return text && send(*text);
    }
    if (item == QLatin1String("suspendacc")) {
        const auto answer = prompter_.askYesNo(
            QStringLiteral("Are you sure you would like to Suspend ") + name + QLatin1Char('?'),
            QStringLiteral("Confirm Suspend! "));
        return answer == Prompter::Answer::Yes && send(QStringLiteral("/suspend ") + name);
    }
    if (item == QLatin1String("info")) {
        return send(QStringLiteral("/info ") + name);
    }
    if (item == QLatin1String("referal")) {
        return send(QStringLiteral("/referal ") + name);
    }
    return false;
}

bool RoomModeration::onRoomItem(const QString& item) {
    if (item == QLatin1String("mlistban")) {
        return send(QStringLiteral("/ipbans"));
    }
    if (item == QLatin1String("voteyes")) {
        return send(QStringLiteral("/yes"));
    }
    if (item == QLatin1String("voteno")) {
        return send(QStringLiteral("/no"));
    }
    if (item == QLatin1String("voter")) {
        const auto answer = prompter_.askText(
            QStringLiteral("Enter Your (Yes or No) Vote Question"),
            QStringLiteral("Vote Question: (Yes or No)"), QStringLiteral("(Yes or No) Question."));
        const auto text = command(item, QString(), answer);
        return text && send(*text);
    }
    return false;
}

bool RoomModeration::send(const QString& command) {
    const int selected = rooms_.selected();
    if (selected < 0) {
        return false;
    }
    rooms_.sendLine(selected, command);
    return true;
}

}  // namespace tavren
