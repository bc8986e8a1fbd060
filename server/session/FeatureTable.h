#pragma once

#include <unordered_map>
#include <vector>

#include "core/protocol/CodePair.h"
#include "server/session/FeatureHandler.h"

namespace tavren::server {

// The one table from request code to the feature that answers it, filled once at start.
class FeatureTable {
  public:
    // Routes every code the feature names to it. Throws std::logic_error when another feature
    // has taken one of them already: two answers to one request is a wiring mistake.
    void add(FeatureHandler& feature);
    // The feature for this code, or nullptr (a feature not built yet: the request is ignored).
    FeatureHandler* find(protocol::CodePair code) const;

    // Told to every feature: arrivals and activity in the order the features were added, leaving
    // in the reverse order.
    void memberArrived(Member& member) const;
    void memberLeft(Member& member) const;
    void memberActive(Member& member) const;

  private:
    std::unordered_map<protocol::CodePair, FeatureHandler*> routes_;
    std::vector<FeatureHandler*> features_;
};

}  // namespace tavren::server
