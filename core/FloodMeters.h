#pragma once

#include <QPointer>
#include <vector>

namespace tavren {

class FloodMeter;

// Every open room and private window registers its flood meter here while it is open, so that
// each request the client sends can count against all of them at once.
class FloodMeters {
  public:
    void add(FloodMeter* meter);
    void remove(FloodMeter* meter);
    // Meters still alive; a window that forgot to unregister is skipped once it is gone.
    int count() const;

    // After a request has gone out: every registered meter rises by one unless it is full.
    void FloodTick();

  private:
    std::vector<QPointer<FloodMeter>> meters_;
};

}  // namespace tavren
