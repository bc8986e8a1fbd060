#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <optional>

class QSoundEffect;

namespace tavren {

class Settings;

// Plays the event sounds. A slot plays only when the master switch is on and the slot is not
// disabled; a missing or unplayable file is passed over without a word, as a sound is never
// worth interrupting the user for.
class SoundPlayer : public QObject {
    Q_OBJECT

  public:
    explicit SoundPlayer(const Settings& settings, QObject* parent = nullptr);
    ~SoundPlayer() override;

    // The file a slot would play now, or nothing when it should stay silent.
    std::optional<QString> fileFor(int slot) const;
    // True when a sound was started.
    bool play(int slot);
    // Plays a file regardless of the switches (the settings window's preview).
    bool playFile(const QString& path);

  private:
    QSoundEffect* effectFor(const QString& path);

    const Settings& settings_;
    // Decoded sounds stay loaded: the same few files play again and again.
    QHash<QString, QSoundEffect*> effects_;
};

}  // namespace tavren
