#pragma once

#include <QPixmap>

namespace tavren {

// The card faces drawn by assets/tools/make_cards.py, embedded in the program: a card number
// 1..52 gives its face, anything else the back.
QPixmap CardPixmap(int card);

}  // namespace tavren
