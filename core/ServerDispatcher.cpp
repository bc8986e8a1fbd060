#include "core/ServerDispatcher.h"

#include <QLoggingCategory>

#include "core/WireText.h"
#include "core/protocol/Catalogue.h"

namespace tavren {

namespace {
Q_LOGGING_CATEGORY(lcDispatch, "tavren.dispatch", QtWarningMsg)
}  // namespace

ServerDispatcher::ServerDispatcher() {
    for (const protocol::CatalogueEntry& entry : protocol::ServerToClientCatalogue()) {
        table_.emplace(entry.code, Route{});
    }
    for (const std::int16_t group : {protocol::kLoginResultGroup, protocol::kNoticeGroup,
                                     protocol::kSearchGroup, protocol::kHoldemGroup}) {
        table_.emplace(groupRow(group), Route{});
    }
}

protocol::CodePair ServerDispatcher::groupRow(std::int16_t group) {
    // No frame carries a negative code (the cutter refuses codes above 32767), so the
    // group rows can never be mistaken for a pair.
    return protocol::CodePair{group, -1};
}

protocol::CodePair ServerDispatcher::rowKey(protocol::CodePair code) {
    return protocol::IsServerGroupMessage(code) ? groupRow(code.cmd1) : code;
}

bool ServerDispatcher::route(protocol::CodePair code, Handler handler) {
    const auto row = code.cmd2 < 0 ? table_.end() : table_.find(rowKey(code));
    if (row == table_.end()) {
        return false;
    }
    row->second.handler = std::move(handler);
    return true;
}

bool ServerDispatcher::isRoutedToFeature(protocol::CodePair code) const {
    const auto row = code.cmd2 < 0 ? table_.end() : table_.find(rowKey(code));
    return row != table_.end() && static_cast<bool>(row->second.handler);
}

void ServerDispatcher::DispatchServerFrame(const protocol::Frame& frame) {
    const auto row = frame.code.cmd2 < 0 ? table_.end() : table_.find(rowKey(frame.code));
    if (row == table_.end()) {
        ++droppedUnknown_;
        qCDebug(lcDispatch) << "dropped unknown" << frame.code.cmd1 << frame.code.cmd2;
        return;
    }
    const ServerMessage message{frame.code, WireText::fromWire(frame.payload)};
    // Copied: a handler may re-route its own row (a window taking over a message).
    const Handler handler = row->second.handler;
    if (!handler) {
        dropUntilBuilt(message);
        return;
    }
    handler(message);
}

void ServerDispatcher::dropUntilBuilt(const ServerMessage& message) {
    ++droppedUntilBuilt_;
    qCDebug(lcDispatch) << "no handler yet for" << message.code.cmd1 << message.code.cmd2;
}

}  // namespace tavren
