#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace tavren {

// One folder of the buddy list and its buddies, in list order.
struct BuddyFolder {
    QString name;
    QStringList buddies;

    bool operator==(const BuddyFolder& other) const = default;
};

using BuddyFolders = std::vector<BuddyFolder>;

}  // namespace tavren
