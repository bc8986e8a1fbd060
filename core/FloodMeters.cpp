#include "core/FloodMeters.h"

#include <algorithm>

#include "core/FloodMeter.h"

namespace tavren {

void FloodMeters::add(FloodMeter* meter) {
    if (meter != nullptr && std::find(meters_.begin(), meters_.end(), meter) == meters_.end()) {
        meters_.emplace_back(meter);
    }
}

void FloodMeters::remove(FloodMeter* meter) {
    std::erase_if(meters_, [meter](const QPointer<FloodMeter>& held) {
        return held.isNull() || held.data() == meter;
    });
}

int FloodMeters::count() const {
    return static_cast<int>(std::count_if(
        meters_.begin(), meters_.end(), [](const QPointer<FloodMeter>& m) { return !m.isNull(); }));
}

void FloodMeters::FloodTick() {
    std::erase_if(meters_, [](const QPointer<FloodMeter>& held) { return held.isNull(); });
    // A window may react to its meter by closing; walk a copy.
    const std::vector<QPointer<FloodMeter>> meters = meters_;
    for (const QPointer<FloodMeter>& meter : meters) {
        if (!meter.isNull()) {
            meter->raise();
        }
    }
}

}  // namespace tavren
