#include "core/SingleInstanceGuard.h"

#include <QDir>
#include <QFileInfo>

namespace tavren {

SingleInstanceGuard::SingleInstanceGuard(const QString& dataRoot)
    : lock_(std::make_unique<QLockFile>(QDir(dataRoot).filePath(QStringLiteral("tavren.lock")))) {
    // A lock never goes stale by age: only a dead owner (checked by process id) frees it.
    lock_->setStaleLockTime(0);
}

bool SingleInstanceGuard::acquire() {
    if (held_) {
        return true;
    }
    QDir().mkpath(QFileInfo(lock_->fileName()).absolutePath());
    held_ = lock_->tryLock(0);
    return held_;
}

}  // namespace tavren
