#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;

namespace tavren {

class WebServices;

// The radio player window: the station's address, Play and Stop, the volume, what the player is
// doing, and what the station says it is playing ("What's Playing?" asks its information page).
class ChatRadio : public QWidget {
    Q_OBJECT
  public:
    explicit ChatRadio(WebServices& web, QWidget* parent = nullptr);

    // Shows the window with `station` in the address box (a profile's radio link); the member
    // presses Play. Empty keeps the remembered station.
    void showStation(const QString& station = QString());

  private:
    void play();
    void lookUp();
    void showState();

    WebServices& web_;
    QLineEdit* station_;
    QPushButton* playButton_;
    QPushButton* stopButton_;
    QPushButton* infoButton_;
    QSlider* volume_;
    QLabel* volumeText_;
    QLabel* state_;
    QLabel* nowPlaying_;
};

}  // namespace tavren
