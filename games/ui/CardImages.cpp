#include "games/ui/CardImages.h"

#include <QHash>

#include "holdem/Cards.h"

namespace tavren {

QPixmap CardPixmap(int card) {
    static QHash<int, QPixmap> loaded;
    const int key = holdem::IsCardNumber(card) ? card : 0;
    auto found = loaded.find(key);
    if (found == loaded.end()) {
        const QString file = key == 0 ? QStringLiteral(":/tavren/cards/back.png")
                                      : QStringLiteral(":/tavren/cards/%1.png").arg(key);
        found = loaded.insert(key, QPixmap(file));
    }
    return found.value();
}

}  // namespace tavren
