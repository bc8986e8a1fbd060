#include "config/SoundPlayer.h"

#include <QFileInfo>
#include <QSoundEffect>
#include <QUrl>

#include "config/Settings.h"
#include "config/SoundSlots.h"

namespace tavren {

namespace {

// More distinct files than the fifteen slots plus a few previews means someone is cycling
// through a folder; start over rather than keep every one decoded.
constexpr int MostCachedEffects = 32;

}  // namespace

SoundPlayer::SoundPlayer(const Settings& settings, QObject* parent)
    : QObject(parent), settings_(settings) {}

SoundPlayer::~SoundPlayer() = default;

std::optional<QString> SoundPlayer::fileFor(int slot) const {
    if (!settings_.values().playSounds || !SoundSlots::isValid(slot)) {
        return std::nullopt;
    }
    const QString file = settings_.soundFile(slot);
    if (file.isEmpty() || file == SoundSlots::disabledText() || !QFileInfo(file).isFile()) {
        return std::nullopt;
    }
    return file;
}

bool SoundPlayer::play(int slot) {
    const auto file = fileFor(slot);
    return file && playFile(*file);
}

bool SoundPlayer::playFile(const QString& path) {
    if (!QFileInfo(path).isFile()) {
        return false;
    }
    QSoundEffect* effect = effectFor(path);
    effect->play();  // starts once loaded if it is still decoding
    return true;
}

QSoundEffect* SoundPlayer::effectFor(const QString& path) {
    if (QSoundEffect* known = effects_.value(path)) {
        return known;
    }
    if (effects_.size() >= MostCachedEffects) {
        qDeleteAll(effects_);
        effects_.clear();
    }
    auto* effect = new QSoundEffect(this);
    effect->setSource(QUrl::fromLocalFile(path));
    effects_.insert(path, effect);
    return effect;
}

}  // namespace tavren
