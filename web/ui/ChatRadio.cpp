#include "web/ui/ChatRadio.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QStyle>
#include <QVBoxLayout>

#include "web/WebServices.h"

namespace tavren {

ChatRadio::ChatRadio(WebServices& web, QWidget* parent) : QWidget(parent, Qt::Window), web_(web) {
    setObjectName(QStringLiteral("ChatRadio"));
    setWindowTitle(tr("Tavren Radio"));
    RadioPlayer& radio = web_.radio();

    station_ = new QLineEdit(radio.station(), this);
    station_->setObjectName(QStringLiteral("station"));
    station_->setPlaceholderText(tr("http:// or https:// address of the station's stream"));
    station_->setToolTip(tr("The address of the station's stream; it is kept for next time."));
    connect(station_, &QLineEdit::returnPressed, this, &ChatRadio::play);

    playButton_ = new QPushButton(style()->standardIcon(QStyle::SP_MediaPlay), tr("&Play"), this);
    playButton_->setObjectName(QStringLiteral("play"));
    stopButton_ = new QPushButton(style()->standardIcon(QStyle::SP_MediaStop), tr("&Stop"), this);
    stopButton_->setObjectName(QStringLiteral("stop"));
    infoButton_ = new QPushButton(tr("&What's Playing?"), this);
    infoButton_->setObjectName(QStringLiteral("nowPlaying"));
    connect(playButton_, &QPushButton::clicked, this, &ChatRadio::play);
    connect(stopButton_, &QPushButton::clicked, &radio, &RadioPlayer::stop);
    connect(infoButton_, &QPushButton::clicked, this, &ChatRadio::lookUp);

    volume_ = new QSlider(Qt::Horizontal, this);
    volume_->setObjectName(QStringLiteral("volume"));
    volume_->setRange(0, 100);
    volume_->setValue(radio.volume());
    volumeText_ = new QLabel(this);
    volumeText_->setMinimumWidth(
        volumeText_->fontMetrics().horizontalAdvance(QStringLiteral("100%")));
    volumeText_->setText(QStringLiteral("%1%").arg(radio.volume()));
    connect(volume_, &QSlider::valueChanged, &radio, &RadioPlayer::setVolume);
    connect(&radio, &RadioPlayer::volumeChanged, this,
            [this](int percent) { volumeText_->setText(QStringLiteral("%1%").arg(percent)); });

    state_ = new QLabel(this);
    state_->setObjectName(QStringLiteral("state"));
    nowPlaying_ = new QLabel(this);
    nowPlaying_->setObjectName(QStringLiteral("nowPlayingText"));
    nowPlaying_->setWordWrap(true);
    nowPlaying_->setTextFormat(Qt::PlainText);
    nowPlaying_->setText(tr("Press \"What's Playing?\" to ask the station."));
    connect(&radio, &RadioPlayer::stateChanged, this, &ChatRadio::showState);
    connect(&radio, &RadioPlayer::streamTitleChanged, this, [this](const QString& title) {
        if (!title.isEmpty()) {
            nowPlaying_->setText(title);
        }
    });
    connect(&web_.lookups(), &WebLookups::radioAnswered, this,
            [this](const QString& channel, const QString& text, bool) {
                if (channel.isEmpty()) {
                    nowPlaying_->setText(text);
                    infoButton_->setEnabled(true);
                }
            });

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(playButton_);
    buttons->addWidget(stopButton_);
    buttons->addStretch(1);
    buttons->addWidget(infoButton_);
    auto* volumeRow = new QHBoxLayout;
    volumeRow->addWidget(volume_, 1);
    volumeRow->addWidget(volumeText_);
    auto* form = new QFormLayout;
    form->addRow(tr("Station:"), station_);
    form->addRow(tr("Volume:"), volumeRow);
    form->addRow(tr("Player:"), state_);
    form->addRow(tr("Now playing:"), nowPlaying_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
    layout->addStretch(1);
    showState();
    resize(420, sizeHint().height());
}

void ChatRadio::showStation(const QString& station) {
    if (!station.trimmed().isEmpty()) {
        station_->setText(station.trimmed());
    }
    show();
    raise();
    activateWindow();
}

void ChatRadio::play() {
    web_.radio().play(station_->text());
}

void ChatRadio::lookUp() {
    infoButton_->setEnabled(false);
    nowPlaying_->setText(tr("Asking the station.."));
    // The configured information page belongs to the configured station; another station is
    // asked on its own server.
    const QString typed = station_->text().trimmed();
    const QString endpoint = typed == web_.radio().station() ? web_.radioInfoEndpoint() : QString();
    web_.lookups().lookUpRadio(endpoint, typed, QString());
}

void ChatRadio::showState() {
    const RadioPlayer& radio = web_.radio();
    state_->setText(radio.stateText());
    const bool running = radio.state() == RadioPlayer::State::Playing ||
                         radio.state() == RadioPlayer::State::Connecting;
    stopButton_->setEnabled(running);
}

}  // namespace tavren
