#pragma once

#include <QList>

namespace tavren {

// The state of the smiley pictures in the data root's "smiles/" folder.
struct SmileyCheck {
    bool custom = false;    // a file named CUSTOM marks the user's own set
    QList<int> missing;     // numbers (101..153) with no picture file
    QList<int> unreadable;  // files present that do not load as a picture

    bool complete() const { return missing.isEmpty() && unreadable.isEmpty(); }
};

}  // namespace tavren
