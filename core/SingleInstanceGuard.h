#pragma once

#include <QLockFile>
#include <QString>
#include <memory>

namespace tavren {

// Tells whether another copy of the client already runs on the same data root. The copy that
// starts first holds a lock file there for its whole life; a crashed copy's stale lock is taken
// over, so a crash never blocks the next start.
class SingleInstanceGuard {
  public:
    explicit SingleInstanceGuard(const QString& dataRoot);

    // True when this process now holds the lock; false when another live copy holds it.
    bool acquire();
    bool held() const { return held_; }

  private:
    std::unique_ptr<QLockFile> lock_;
    bool held_ = false;
};

}  // namespace tavren
