#include "server/session/FeatureTable.h"

#include <stdexcept>
#include <string>

namespace tavren::server {

void FeatureTable::add(FeatureHandler& feature) {
    for (const protocol::CodePair code : feature.requests()) {
        if (!routes_.emplace(code, &feature).second) {
            throw std::logic_error("two features answer (" + std::to_string(code.cmd1) + ", " +
                                   std::to_string(code.cmd2) + ")");
        }
    }
    features_.push_back(&feature);
}

FeatureHandler* FeatureTable::find(protocol::CodePair code) const {
    const auto route = routes_.find(code);
    return route == routes_.end() ? nullptr : route->second;
}

void FeatureTable::memberArrived(Member& member) const {
    for (FeatureHandler* feature : features_) {
        feature->memberArrived(member);
    }
}

void FeatureTable::memberLeft(Member& member) const {
    for (auto feature = features_.rbegin(); feature != features_.rend(); ++feature) {
        (*feature)->memberLeft(member);
    }
}

void FeatureTable::memberActive(Member& member) const {
    for (FeatureHandler* feature : features_) {
        feature->memberActive(member);
    }
}

}  // namespace tavren::server
