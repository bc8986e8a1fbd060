#pragma once

#include <QObject>
#include <QString>

#include "config/Settings.h"
#include "config/SettingsStore.h"
#include "config/SoundPlayer.h"
#include "contacts/DataFiles.h"
#include "core/AwayStatus.h"
#include "core/ServerSession.h"

namespace tavren {

class AutostartRegistrar;
class Prompter;

// The session-side objects of one running client, owned in one place and handed to the windows
// by reference: the settings, the three data files, the sound player, the server session and the
// away state.
class ClientSession : public QObject {
    Q_OBJECT
  public:
    // `autostart` may be null (tests): saving the settings then leaves the OS start-up list alone.
    // `prompter` answers the questions the session layer asks (connection errors, sign-up).
    ClientSession(const QString& dataRoot, AutostartRegistrar* autostart, Prompter& prompter,
                  QObject* parent = nullptr);

    QString dataRoot() const { return dataRoot_; }

    SettingsStore& store() { return store_; }
    Settings& settings() { return settings_; }
    DataFiles& dataFiles() { return files_; }
    AwayMessages& awayMessages() { return files_.away(); }
    IgnoreList& ignoreList() { return files_.ignore(); }
    PerformList& performList() { return files_.perform(); }
    SoundPlayer& sounds() { return sounds_; }
    ServerSession& server() { return server_; }
    AwayStatus& awayStatus() { return awayStatus_; }

  private:
    QString dataRoot_;
    SettingsStore store_;
    Settings settings_;
    DataFiles files_;
    SoundPlayer sounds_;
    ServerSession server_;
    AwayStatus awayStatus_;
};

}  // namespace tavren
