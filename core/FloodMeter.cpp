#include "core/FloodMeter.h"

#include <algorithm>

namespace tavren {

FloodMeter::FloodMeter(int maximum, QObject* parent)
    : QObject(parent), maximum_(std::max(1, maximum)) {}

void FloodMeter::setValue(int value) {
    const int clamped = std::clamp(value, 0, maximum_);
    if (clamped != value_) {
        value_ = clamped;
        emit valueChanged(value_);
    }
}

void FloodMeter::setMaximum(int maximum) {
    maximum_ = std::max(1, maximum);
    setValue(value_);
}

bool FloodMeter::raise() {
    if (full()) {
        return false;
    }
    setValue(value_ + 1);
    return true;
}

}  // namespace tavren
