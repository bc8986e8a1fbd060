#include "web/RadioPlayer.h"

#include <QAudioOutput>
#include <QMediaMetaData>
#include <QMediaPlayer>
#include <algorithm>

#include "config/Settings.h"
#include "web/HttpFetch.h"

namespace tavren {

RadioPlayer::RadioPlayer(Settings& settings, QObject* parent)
    : QObject(parent), settings_(settings), stateText_(tr("Stopped")) {}

RadioPlayer::~RadioPlayer() {
    if (player_ != nullptr) {
        player_->stop();
    }
}

QString RadioPlayer::station() const {
    return settings_.values().radioStation;
}

int RadioPlayer::volume() const {
    return settings_.values().radioVolume;
}

// The media backend starts only when something is played: opening the client must not wake
// the sound system.
void RadioPlayer::ensurePlayer() {
    if (player_ != nullptr) {
        return;
    }
    player_ = new QMediaPlayer(this);
    output_ = new QAudioOutput(this);
    output_->setVolume(float(volume()) / 100.0f);
    player_->setAudioOutput(output_);
    connect(player_, &QMediaPlayer::mediaStatusChanged, this,
            [this](QMediaPlayer::MediaStatus status) {
                if (state_ == State::Stopped || state_ == State::Failed) {
                    return;
                }
                if (status == QMediaPlayer::LoadingMedia || status == QMediaPlayer::StalledMedia ||
                    status == QMediaPlayer::BufferingMedia) {
                    setState(State::Connecting, tr("Connecting.."));
                } else if (status == QMediaPlayer::BufferedMedia ||
                           status == QMediaPlayer::LoadedMedia) {
                    if (player_->playbackState() == QMediaPlayer::PlayingState) {
                        setState(State::Playing, tr("Playing"));
                    }
                } else if (status == QMediaPlayer::EndOfMedia) {
                    setState(State::Stopped, tr("The station stopped sending."));
                } else if (status == QMediaPlayer::InvalidMedia) {
                    setState(State::Failed, tr("The station's stream cannot be played."));
                }
            });
    connect(player_, &QMediaPlayer::playbackStateChanged, this,
            [this](QMediaPlayer::PlaybackState playback) {
                if (playback == QMediaPlayer::PlayingState && state_ == State::Connecting &&
                    player_->mediaStatus() == QMediaPlayer::BufferedMedia) {
                    setState(State::Playing, tr("Playing"));
                }
            });
    connect(player_, &QMediaPlayer::errorOccurred, this,
            [this](QMediaPlayer::Error, const QString& text) {
                setState(State::Failed, text.isEmpty()
                                            ? tr("The station cannot be played.")
                                            : tr("The station cannot be played: %1").arg(text));
            });
    connect(player_, &QMediaPlayer::metaDataChanged, this, [this] {
        const QString title =
            player_->metaData().stringValue(QMediaMetaData::Title).simplified().left(200);
        if (title != streamTitle_) {
            streamTitle_ = title;
            emit streamTitleChanged(title);
        }
    });
}

bool RadioPlayer::play(const QString& station) {
    const QUrl url(station.trimmed(), QUrl::StrictMode);
    if (!HttpFetch::isWebAddress(url)) {
        setState(State::Failed, tr("A station is an http or https address."));
        return false;
    }
    settings_.setRadio(url.toString(), volume());
    ensurePlayer();
    streamTitle_.clear();
    emit streamTitleChanged(QString());
    setState(State::Connecting, tr("Connecting.."));
    player_->setSource(url);
    player_->play();
    return true;
}

void RadioPlayer::stop() {
    if (player_ != nullptr) {
        player_->stop();
        player_->setSource(QUrl());
    }
    setState(State::Stopped, tr("Stopped"));
}

void RadioPlayer::setVolume(int percent) {
    percent = std::clamp(percent, 0, 100);
    if (percent == volume()) {
        return;
    }
    settings_.setRadio(station(), percent);
    if (output_ != nullptr) {
        output_->setVolume(float(percent) / 100.0f);
    }
    emit volumeChanged(percent);
}

void RadioPlayer::setState(State state, const QString& text) {
    if (state == state_ && text == stateText_) {
        return;
    }
    state_ = state;
    stateText_ = text;
    emit stateChanged(state, text);
}

}  // namespace tavren
