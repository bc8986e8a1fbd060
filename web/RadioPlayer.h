#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

class QAudioOutput;
class QMediaPlayer;

namespace tavren {

class Settings;

// The small radio player: streams a station over http or https with Qt Multimedia, with play,
// stop and volume. The station and the volume are kept in the settings ("radiostation",
// "radiovolume") as soon as they change, so the player starts where the member left it.
class RadioPlayer : public QObject {
    Q_OBJECT
  public:
    enum class State { Stopped, Connecting, Playing, Failed };

    explicit RadioPlayer(Settings& settings, QObject* parent = nullptr);
    ~RadioPlayer() override;

    QString station() const;
    int volume() const;
    State state() const { return state_; }
    // What the player shows under the station: "Stopped", "Connecting..", "Playing", or why it
    // failed.
    QString stateText() const { return stateText_; }
    // The title the stream itself announces, when it does.
    QString streamTitle() const { return streamTitle_; }

    // Plays `station` (kept as the station); false, with the reason as state text, when it is
    // not an http or https address.
    bool play(const QString& station);
    void stop();
    // 0..100.
    void setVolume(int percent);

  signals:
    void stateChanged(RadioPlayer::State state, const QString& text);
    void streamTitleChanged(const QString& title);
    void volumeChanged(int percent);

  private:
    void setState(State state, const QString& text);
    void ensurePlayer();

    Settings& settings_;
    QMediaPlayer* player_ = nullptr;
    QAudioOutput* output_ = nullptr;
    State state_ = State::Stopped;
    QString stateText_;
    QString streamTitle_;
};

}  // namespace tavren
