#pragma once

#include <QString>

#include "core/SingleInstanceGuard.h"

namespace tavren {

class ClientSession;
class Prompter;

// Prepares the process before the main window shows, in a fixed order: the platform checks and
// the second-copy question first (nothing is touched if the user declines), then the folders,
// the settings, the smileys and sounds, and the three data files.
class Startup {
  public:
    Startup(const QString& dataRoot, Prompter& prompter);

    // False when the program must end now: a missing prerequisite, or another copy is running
    // and the user does not want a second one.
    bool claimProcess();

    // Creates the data folders and loads everything the windows show. Problems on a read-only
    // or damaged data root are reported in the returned text (empty when all went well); the
    // program goes on with defaults.
    QString loadUserData(ClientSession& session);

  private:
    QString dataRoot_;
    Prompter& prompter_;
    SingleInstanceGuard guard_;
};

}  // namespace tavren
