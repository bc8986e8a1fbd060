#include "core/AwayMenuModel.h"

namespace tavren {

namespace {
const QString kAwayPrefix = QStringLiteral("awy");
}

std::vector<AwayMenuModel::Item> AwayMenuModel::build(const QStringList& awayNames, bool away) {
    std::vector<Item> items;
    if (away) {
        items.push_back({QStringLiteral("Set Yourself &Back.."), QStringLiteral("back")});
    } else {
        items.push_back({QStringLiteral("&New Away Message.."), QStringLiteral("new")});
        items.push_back({QString(), QStringLiteral("spc1")});
        for (int i = 0; i < awayNames.size(); ++i) {
            items.push_back({QStringLiteral("&") + awayNames[i], kAwayPrefix + QString::number(i)});
        }
    }
    items.push_back({QString(), QStringLiteral("spc2")});
    items.push_back({QStringLiteral("&Edit Away Messages.."), QStringLiteral("edt")});
    return items;
}

int AwayMenuModel::awayIndex(const QString& key) {
    if (!key.startsWith(kAwayPrefix)) {
        return -1;
    }
    bool ok = false;
    const int index = key.mid(kAwayPrefix.size()).toInt(&ok);
    return ok && index >= 0 ? index : -1;
}

}  // namespace tavren
