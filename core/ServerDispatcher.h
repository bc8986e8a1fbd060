#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <unordered_map>

#include "core/ServerMessage.h"
#include "core/protocol/CodePair.h"
#include "core/protocol/Frame.h"

namespace tavren {

// Routes every frame from the server to the code that owns it, by code pair, through one table.
// The table knows every pair the server sends; groups 3, 4 and 6 and the Hold'em messages
// (7, 1..16) each have one entry for the whole group. Pairs whose feature is not built yet are
// routed to dropUntilBuilt(); pairs the table does not know are dropped without a word.
class ServerDispatcher {
  public:
    using Handler = std::function<void(const ServerMessage&)>;

    ServerDispatcher();

    // Converts the payload once and calls the handler of the frame's code pair.
    void DispatchServerFrame(const protocol::Frame& frame);

    // Gives a known pair (or, for a whole-group message, any pair of that group) its handler.
    // Returns false for a pair the server never sends; the table is left unchanged then.
    bool route(protocol::CodePair code, Handler handler);
    bool isRoutedToFeature(protocol::CodePair code) const;

    // What was dropped so far, for the server console and tests.
    int droppedUnknown() const { return droppedUnknown_; }
    int droppedUntilBuilt() const { return droppedUntilBuilt_; }

  private:
    struct Route {
        Handler handler;  // empty: the owning feature is not built yet
    };

    // The key of the pair's row: whole-group messages share one row per group.
    static protocol::CodePair rowKey(protocol::CodePair code);
    static protocol::CodePair groupRow(std::int16_t group);
    // Where frames of features that are not built yet end: they are counted and dropped.
    void dropUntilBuilt(const ServerMessage& message);

    std::unordered_map<protocol::CodePair, Route> table_;
    int droppedUnknown_ = 0;
    int droppedUntilBuilt_ = 0;
};

}  // namespace tavren
