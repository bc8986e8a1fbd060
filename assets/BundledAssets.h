#pragma once

#include <QString>
#include <QStringList>

#include "assets/AssetInstallReport.h"
#include "assets/SmileyCheck.h"
#include "core/DataRoot.h"

namespace tavren {

// The smiley pictures and event sounds that ship inside the client, and their installation into
// the data root: "smiles/101.gif" .. "smiles/153.gif" and the fifteen "sounds/*.wav".
//
// The data root is the user's: a file already there is never replaced, so a picture or sound the
// user swapped in survives every start. A file named CUSTOM in "smiles/" marks the whole folder
// as the user's own set; then nothing is written into it at all, not even a missing number.
class BundledAssets {
  public:
    static constexpr int kFirstSmiley = 101;
    static constexpr int kLastSmiley = 153;

    // "101.gif" for 101.
    static QString smileyFileName(int number);
    // The fifteen sounds in the order of the sound slots, "buddy_online.wav" first.
    static QStringList soundFileNames();
    // The name of the marker file of a custom smiley set: "CUSTOM".
    static QString customMarkerName();
    // The embedded copy of a bundled file, e.g. "smiles/101.gif" -> ":/tavren/smiles/101.gif".
    static QString resourcePath(const QString& relativePath);

    // Writes every bundled smiley and sound the data root lacks, creating "smiles/" and
    // "sounds/" as needed. Never throws; failures (read-only or full disk) are in the report.
    static AssetInstallReport install(const QString& dataRoot = DataRoot::path());

    // Looks at the numbered pictures in "smiles/": which are missing, which do not load, and
    // whether the set is marked as the user's own.
    static SmileyCheck checkSmileys(const QString& dataRoot = DataRoot::path());
};

}  // namespace tavren
