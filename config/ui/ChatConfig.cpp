#include "config/ui/ChatConfig.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QSlider>
#include <QSpinBox>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "config/OperatingSystemName.h"
#include "config/SchemeLibrary.h"
#include "config/Settings.h"
#include "config/SettingsStore.h"
#include "config/SoundPlayer.h"
#include "config/ui/AwayMessagesEditor.h"
#include "config/ui/ColorPreview.h"
#include "config/ui/ColorSwatch.h"
#include "config/ui/ListEditor.h"
#include "config/ui/SoundFileBox.h"
#include "contacts/DataFiles.h"
#include "core/ConnectTarget.h"
#include "core/ConnectionOptions.h"
#include "core/Prompter.h"

namespace tavren {

namespace {

QLabel* wrappedLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    return label;
}

QWidget* pageWithLayout(QWidget* parent, QLayout* layout) {
    auto* page = new QWidget(parent);
    page->setLayout(layout);
    return page;
}

void selectEntry(QComboBox* combo, const QStringList& entries, const QString& value) {
    combo->clear();
    combo->addItems(entries);
    const int index = combo->findText(value, Qt::MatchFixedString);
    if (index >= 0) {
        combo->setCurrentIndex(index);
    }
    combo->setEditText(value);
}

const char* const swatchLabels[ColorScheme::MessageColorCount] = {
    "Their Nickname:", "Their Text:",    "ChanHost Nickname:",
    "ChanHost Text:",  "Your Nickname:", "Your Text:",
};

}  // namespace

ChatConfig::ChatConfig(Settings& settings, DataFiles& files, Prompter& prompter,
                       SoundPlayer* player, QWidget* parent)
    : QDialog(parent), settings_(settings), files_(files), prompter_(prompter), player_(player) {
    setObjectName(QStringLiteral("ChatConfig"));
    setWindowTitle(caption());
    setMinimumSize(660, 500);
    colorChooser_ = [this](const QColor& initial, const QString& title) -> std::optional<QColor> {
        const QColor chosen = QColorDialog::getColor(initial, this, title);
        return chosen.isValid() ? std::optional<QColor>(chosen) : std::nullopt;
    };
    fileChooser_ = [this](const QString& folder) {
        return QFileDialog::getOpenFileName(this, tr("Select Sound..."), folder,
                                            tr("Wave sounds (*.wav);;All files (*)"));
    };

    pages_ = new QListWidget(this);
    pages_->setObjectName(QStringLiteral("lstOptions"));
    pages_->addItems(pageNames());
    pages_->setFixedWidth(130);
    title_ = new QLabel(this);
    title_->setObjectName(QStringLiteral("lbltitle"));
    QFont titleFont = title_->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.3);
    title_->setFont(titleFont);

    panels_ = new QStackedWidget(this);
    panels_->setObjectName(QStringLiteral("picOptions"));
    panels_->addWidget(buildGeneralPage());
    panels_->addWidget(buildUiOptionsPage());
    panels_->addWidget(buildSoundsPage());
    panels_->addWidget(buildProxyPage());
    panels_->addWidget(buildServerPage());
    panels_->addWidget(buildPrivacyPage());
    panels_->addWidget(buildPerformPage());
    panels_->addWidget(buildAwayPage());
    panels_->addWidget(buildWebPage());

    auto* buttons = new QDialogButtonBox(this);
    auto* resetButton = buttons->addButton(tr("&Reset"), QDialogButtonBox::ResetRole);
    resetButton->setObjectName(QStringLiteral("cmdReset"));
    buttons->addButton(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("cmdOK"));
    buttons->addButton(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cmdCancel"));
    connect(resetButton, &QPushButton::clicked, this, &ChatConfig::askReset);
    connect(buttons, &QDialogButtonBox::accepted, this, &ChatConfig::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ChatConfig::reject);

    auto* right = new QVBoxLayout;
    right->addWidget(title_);
    right->addWidget(panels_, 1);
    auto* body = new QHBoxLayout;
    body->addWidget(pages_);
    body->addLayout(right, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(body, 1);
    layout->addWidget(buttons);

    connect(pages_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0) {
            panels_->setCurrentIndex(row);
            title_->setText(pages_->item(row)->text());
        }
    });
    showPage(Page::General);
    reload();
}

QStringList ChatConfig::pageNames() {
    return {
        QStringLiteral("General"), QStringLiteral("UI Options"), QStringLiteral("Sounds"),
        QStringLiteral("Proxy"),   QStringLiteral("Server"),     QStringLiteral("Privacy"),
        QStringLiteral("Perform"), QStringLiteral("Away Msg's"), QStringLiteral("Web Services")};
}

QString ChatConfig::caption() {
    return QStringLiteral("Tavren Chat Settings: (") + OperatingSystemName::currentName() +
           QStringLiteral(")");
}

// Translucent top-level windows need a compositing window system; the platforms that have one
// for certain are Windows, macOS and X11 (where a compositor is the norm).
bool ChatConfig::windowOpacitySupported() {
    const QString platform = QGuiApplication::platformName();
    return platform == QLatin1String("windows") || platform == QLatin1String("cocoa") ||
           platform == QLatin1String("xcb");
}

QCheckBox* ChatConfig::checkBox(const QString& name, const QString& text) {
    auto* box = new QCheckBox(text, this);
    box->setObjectName(name);
    return box;
}

QComboBox* ChatConfig::editableCombo(const QString& name) {
    auto* combo = new QComboBox(this);
    combo->setObjectName(name);
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->setMinimumContentsLength(24);
    return combo;
}

QSlider* ChatConfig::levelSlider(const QString& name, int minimum, int maximum) {
    auto* slider = new QSlider(Qt::Horizontal, this);
    slider->setObjectName(name);
    slider->setRange(minimum, maximum);
    slider->setTickPosition(QSlider::TicksBelow);
    slider->setTickInterval(qMax(1, (maximum - minimum) / 10));
    return slider;
}

// A slider between "Less" and "More", under its caption.
static QLayout* sliderRow(QWidget* parent, const QString& caption, QSlider* slider) {
    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel(caption, parent), 0, 0, 1, 3);
    grid->addWidget(new QLabel(QStringLiteral("Less"), parent), 1, 0);
    grid->addWidget(slider, 1, 1);
    grid->addWidget(new QLabel(QStringLiteral("More"), parent), 1, 2);
    grid->setColumnStretch(1, 1);
    return grid;
}

QWidget* ChatConfig::buildGeneralPage() {
    autoLogin_ = checkBox(QStringLiteral("Check4"), QStringLiteral("&Auto Login on Startup."));
    autoStart_ = checkBox(QStringLiteral("Check5"), QStringLiteral("&Load On Windows Startup."));
    autoReconnect_ = checkBox(QStringLiteral("Check11"), QStringLiteral("&Auto Reconnect."));
    timestamp_ = checkBox(QStringLiteral("Check13"), QStringLiteral("&View Timestamps."));
    smiles_ = checkBox(QStringLiteral("Check6"), QStringLiteral("Enable Graphical &Smileys."));
    autoAccept_ =
        checkBox(QStringLiteral("Check15"), QStringLiteral("&Auto Accept PM Connections"));
    tunnel_ =
        checkBox(QStringLiteral("Check14"),
                 QStringLiteral("&Check Here if you are behind a firewall or using a router."));

    lowerRange_ = new QSpinBox(this);
    lowerRange_->setObjectName(QStringLiteral("Text3"));
    upperRange_ = new QSpinBox(this);
    upperRange_->setObjectName(QStringLiteral("Text4"));
    for (QSpinBox* port : {lowerRange_, upperRange_}) {
        port->setRange(SettingsValues::PortMin, SettingsValues::PortMax);
        port->setButtonSymbols(QAbstractSpinBox::NoButtons);
        port->setMinimumWidth(70);
    }
    auto* ports = new QGroupBox(tr("Direct connections"), this);
    auto* portLayout = new QGridLayout(ports);
    portLayout->addWidget(
        wrappedLabel(QStringLiteral("Port range for direct connections and file transfers that "
                                    "client is allowed to use..(try to keep a minimum of 100 "
                                    "ports free.."),
                     ports),
        0, 0, 1, 4);
    portLayout->addWidget(lowerRange_, 1, 0);
    portLayout->addWidget(new QLabel(QStringLiteral("-"), ports), 1, 1);
    portLayout->addWidget(upperRange_, 1, 2);
    portLayout->setColumnStretch(3, 1);
    portLayout->addWidget(tunnel_, 2, 0, 1, 4);
    portLayout->addWidget(autoAccept_, 3, 0, 1, 4);

    auto* layout = new QVBoxLayout;
    for (QCheckBox* box : {autoLogin_, autoStart_, autoReconnect_, timestamp_, smiles_}) {
        layout->addWidget(box);
    }
    layout->addWidget(ports);
    layout->addStretch(1);
    return pageWithLayout(this, layout);
}

QWidget* ChatConfig::buildUiOptionsPage() {
    bold_ = checkBox(QStringLiteral("Check2"), QStringLiteral("Bold Nicknames"));
    underline_ = checkBox(QStringLiteral("Check1"), QStringLiteral("Underline Nicknames"));
    connect(bold_, &QCheckBox::toggled, this, &ChatConfig::refreshColors);
    connect(underline_, &QCheckBox::toggled, this, &ChatConfig::refreshColors);

    auto* colorsBox = new QGroupBox(tr("Colors"), this);
    auto* swatchGrid = new QGridLayout(colorsBox);
    for (int i = 0; i < ColorScheme::MessageColorCount; ++i) {
        auto* swatch = new ColorSwatch(colorsBox);
        swatch->setObjectName(QStringLiteral("Picture") + QString::number(i + 5));
        swatches_[std::size_t(i)] = swatch;
        const auto field = ColorScheme::Field(ColorScheme::TheirNick + i);
        connect(swatch, &ColorSwatch::clicked, this, [this, field] { chooseColor(field); });
        const int row = i / 2;
        const int column = (i % 2) * 2;
        swatchGrid->addWidget(new QLabel(QString::fromLatin1(swatchLabels[i]), colorsBox), row,
                              column);
        swatchGrid->addWidget(swatch, row, column + 1);
    }
    swatchGrid->addWidget(bold_, 3, 0, 1, 2);
    swatchGrid->addWidget(underline_, 3, 2, 1, 2);
    swatchGrid->setColumnStretch(1, 1);
    swatchGrid->setColumnStretch(3, 1);

    preview_ = new ColorPreview(this);
    preview_->setMinimumSize(220, 150);
    connect(preview_, &ColorPreview::surfaceClicked, this, &ChatConfig::chooseColor);

    schemes_ = new QListWidget(this);
    schemes_->setObjectName(QStringLiteral("File1"));
    schemes_->setToolTip(QStringLiteral("Select a color scheme"));
    connect(schemes_, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { applyChosenScheme(item->text()); });
    connect(schemes_, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { applyChosenScheme(item->text()); });
    auto* saveSchemeButton = new QPushButton(QStringLiteral("Save Color Scheme"), this);
    saveSchemeButton->setObjectName(QStringLiteral("cmdSaveScheme"));
    auto* removeSchemeButton = new QPushButton(QStringLiteral("Remove Color Scheme"), this);
    removeSchemeButton->setObjectName(QStringLiteral("cmdRemoveScheme"));
    connect(saveSchemeButton, &QPushButton::clicked, this, &ChatConfig::saveScheme);
    connect(removeSchemeButton, &QPushButton::clicked, this, &ChatConfig::removeScheme);
    auto* schemeBox = new QGroupBox(tr("Color schemes"), this);
    auto* schemeLayout = new QVBoxLayout(schemeBox);
    schemeLayout->addWidget(schemes_, 1);
    schemeLayout->addWidget(saveSchemeButton);
    schemeLayout->addWidget(removeSchemeButton);

    auto* top = new QHBoxLayout;
    top->addWidget(preview_, 3);
    top->addWidget(schemeBox, 2);

    trans_ = checkBox(QStringLiteral("Check12"), QStringLiteral("Enabled"));
    transLevel_ = levelSlider(QStringLiteral("Slider2"), SettingsValues::TransLevelMin,
                              SettingsValues::TransLevelMax);
    autoScroll_ = levelSlider(QStringLiteral("Slider1"), SettingsValues::AutoScrollMin,
                              SettingsValues::AutoScrollMax);
    const bool translucency = windowOpacitySupported();
    trans_->setEnabled(translucency);
    transLevel_->setEnabled(translucency);
    // The windows show the chosen translucency while the box and slider move; Cancel takes
    // them back to what the settings say.
    const auto preview = [this] {
        SettingsValues tried;
        tried.trans = trans_->isChecked();
        tried.transLevel = transLevel_->value();
        emit opacityPreviewed(tried.windowOpacity());
    };
    connect(trans_, &QCheckBox::toggled, this, preview);
    connect(transLevel_, &QSlider::valueChanged, this, preview);
    connect(this, &QDialog::rejected, this,
            [this] { emit opacityPreviewed(settings_.values().windowOpacity()); });
    auto* windowBox = new QGroupBox(tr("Windows"), this);
    auto* windowLayout = new QGridLayout(windowBox);
    windowLayout->addWidget(new QLabel(QStringLiteral("Transparency:"), windowBox), 0, 0);
    windowLayout->addWidget(trans_, 0, 1);
    windowLayout->addLayout(
        sliderRow(windowBox, QStringLiteral("Transparency Level:"), transLevel_), 1, 0, 1, 2);
    windowLayout->addLayout(
        sliderRow(windowBox, QStringLiteral("Auto Scroll Sensitivity:"), autoScroll_), 0, 2, 2, 1);
    windowLayout->setColumnStretch(1, 1);
    windowLayout->setColumnStretch(2, 1);

    notify_ = checkBox(QStringLiteral("chkNotify"),
                       tr("Show &desktop notices for private messages and buddies"));
    notify_->setToolTip(
        tr("While Tavren is in the background, a private message or a buddy "
           "coming online shows a notice beside the tray icon; clicking it "
           "opens the conversation."));

    auto* layout = new QVBoxLayout;
    layout->addLayout(top, 1);
    layout->addWidget(colorsBox);
    layout->addWidget(windowBox);
    layout->addWidget(notify_);
    return pageWithLayout(this, layout);
}

QWidget* ChatConfig::buildSoundsPage() {
    playSounds_ = checkBox(QStringLiteral("Check7"), QStringLiteral("Play Sounds"));
    auto* rows = new QWidget(this);
    auto* grid = new QGridLayout(rows);
    for (int slot = 0; slot < SoundSlots::Count; ++slot) {
        auto* combo = new SoundFileBox(rows);
        combo->setObjectName(QStringLiteral("Sound") + QString::number(slot));
        sounds_[std::size_t(slot)] = combo;
        connect(combo, &QComboBox::activated, this,
                [this, slot](int index) { soundEntryActivated(slot, index); });
        connect(combo, &SoundFileBox::valueChanged, this,
                [this, slot](const QString& value) { soundValues_[std::size_t(slot)] = value; });
        auto* select = new QPushButton(QStringLiteral("Select Sound..."), rows);
        select->setObjectName(QStringLiteral("Command9_") + QString::number(slot));
        connect(select, &QPushButton::clicked, this, [this, slot] { chooseSound(slot); });
        grid->addWidget(new QLabel(SoundSlots::label(slot), rows), slot, 0);
        grid->addWidget(combo, slot, 1);
        grid->addWidget(select, slot, 2);
    }
    grid->setColumnStretch(1, 1);
    auto* scroll = new QScrollArea(this);
    scroll->setWidget(rows);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);

    auto* layout = new QVBoxLayout;
    layout->addWidget(playSounds_);
    layout->addWidget(scroll, 1);
    return pageWithLayout(this, layout);
}

QWidget* ChatConfig::buildProxyPage() {
    useProxy_ = checkBox(QStringLiteral("Check3"), QStringLiteral("Enable Proxy"));
    proxyHost_ = editableCombo(QStringLiteral("Combo1"));
    proxyPort_ = new QLineEdit(this);
    proxyPort_->setObjectName(QStringLiteral("Text1"));
    proxyPort_->setMaximumWidth(90);
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Host:"), proxyHost_);
    form->addRow(QStringLiteral("Port:"), proxyPort_);
    auto* layout = new QVBoxLayout;
    layout->addWidget(useProxy_);
    layout->addLayout(form);
    layout->addStretch(1);
    return pageWithLayout(this, layout);
}

QWidget* ChatConfig::buildWebPage() {
    const auto addressBox = [this](const QString& name, const QString& placeholder) {
        auto* box = new QLineEdit(this);
        box->setObjectName(name);
        box->setPlaceholderText(placeholder);
        return box;
    };
    weatherUrl_ = addressBox(QStringLiteral("weatherurl"), SettingsValues::defaultWeatherUrl());
    radioStation_ =
        addressBox(QStringLiteral("radiostation"), SettingsValues::defaultRadioStation());
    radioInfoUrl_ = addressBox(QStringLiteral("radioinfourl"),
                               tr("empty: the status page of the station's own server"));
    auto* form = new QFormLayout;
    form->addRow(tr("Weather service:"), weatherUrl_);
    form->addRow(tr("Radio station:"), radioStation_);
    form->addRow(tr("Station information:"), radioInfoUrl_);
    auto* layout = new QVBoxLayout;
    layout->addLayout(form);
    layout->addWidget(wrappedLabel(
        tr("\"/weather\" followed by a postal code asks the weather service; {code} in its "
           "address stands for the postal code, and the answer is JSON as wttr.in gives it "
           "(format=j1). The radio player plays the station's stream; \"/radio\" and the "
           "player's \"What's Playing?\" read an Icecast status page (/status-json.xsl). Only "
           "http and https addresses are used."),
        this));
    layout->addStretch(1);
    return pageWithLayout(this, layout);
}

QWidget* ChatConfig::buildServerPage() {
    serverHost_ = editableCombo(QStringLiteral("Combo2"));
    serverPort_ = editableCombo(QStringLiteral("Combo3"));
    serverHostMeaning_ = new QLabel(this);
    serverHostMeaning_->setObjectName(QStringLiteral("serverHostMeaning"));
    serverPortMeaning_ = new QLabel(this);
    serverPortMeaning_->setObjectName(QStringLiteral("serverPortMeaning"));
    connect(serverHost_, &QComboBox::editTextChanged, this, &ChatConfig::explainServer);
    connect(serverPort_, &QComboBox::editTextChanged, this, &ChatConfig::explainServer);
    // What a keyword stands for goes in a column of its own, so both boxes line up.
    auto* grid = new QGridLayout;
    grid->addWidget(new QLabel(QStringLiteral("Server:"), this), 0, 0);
    grid->addWidget(serverHost_, 0, 1);
    grid->addWidget(serverHostMeaning_, 0, 2);
    grid->addWidget(new QLabel(QStringLiteral("Port:"), this), 1, 0);
    grid->addWidget(serverPort_, 1, 1);
    grid->addWidget(serverPortMeaning_, 1, 2);
    grid->setColumnStretch(1, 1);
    tls_ = checkBox(QStringLiteral("tlsCheck"), QStringLiteral("&Encrypted connection (TLS)"));
    auto* layout = new QVBoxLayout;
    layout->addLayout(grid);
    layout->addWidget(tls_);
    layout->addWidget(wrappedLabel(
        tr("Names in braces stand for the servers and the port that this client was made for; "
           "what each one connects to is shown beside it. Type a host name or address and a "
           "port number to use another server."),
        this));
    layout->addWidget(wrappedLabel(
        tr("With encryption on, nobody between you and the server can read or change what you "
           "send, your password included. A server whose certificate no authority vouches for "
           "is shown with its fingerprint the first time, and you are warned if it ever "
           "changes. Turn encryption off only for an older server that does not offer it."),
        this));
    layout->addStretch(1);
    return pageWithLayout(this, layout);
}

void ChatConfig::explainServer() {
    // The keywords are what is stored; the address behind them is fixed when the client is
    // built, so the member cannot see it anywhere else.
    const ConnectionOptions options = ConnectionOptions::deployment();
    const QString host = serverHost_->currentText().trimmed();
    const QString resolvedHost = ConnectTarget::resolveHost(host, options);
    serverHostMeaning_->setText(resolvedHost != host ? tr("= %1").arg(resolvedHost) : QString());
    const QString port = serverPort_->currentText().trimmed();
    const quint16 resolvedPort = ConnectTarget::resolvePort(port, options);
    if (resolvedPort == 0) {
        serverPortMeaning_->setText(port.isEmpty() ? QString() : tr("not a port number"));
    } else {
        serverPortMeaning_->setText(
            QString::number(resolvedPort) != port ? tr("= %1").arg(resolvedPort) : QString());
    }
}

QWidget* ChatConfig::buildPrivacyPage() {
    ignorePms_ = checkBox(QStringLiteral("Check8"), QStringLiteral("Dim &Private Messages."));
    ignoreMotd_ = checkBox(QStringLiteral("Check9"), QStringLiteral("&Ignore M.O.T.D."));
    ignore_ = new ListEditor(tr("User name"), &IgnoreList::admissible, this);
    ignore_->setObjectName(QStringLiteral("ignoreList"));
    auto* layout = new QVBoxLayout;
    layout->addWidget(ignorePms_);
    layout->addWidget(wrappedLabel(
        QStringLiteral("Note: Private messages will only be displayed in active chats. If chat "
                       "window is not present, they will be droped."),
        this));
    layout->addWidget(ignoreMotd_);
    layout->addSpacing(8);
    layout->addWidget(new QLabel(tr("Ignored users:"), this));
    layout->addWidget(ignore_, 1);
    return pageWithLayout(this, layout);
}

QWidget* ChatConfig::buildPerformPage() {
    autoJoin_ = checkBox(QStringLiteral("Check10"), QStringLiteral("On &Join Perform:"));
    perform_ = new ListEditor(tr("/command"), &PerformList::admissible, this);
    perform_->setObjectName(QStringLiteral("performList"));
    auto* layout = new QVBoxLayout;
    layout->addWidget(autoJoin_);
    layout->addWidget(perform_, 1);
    return pageWithLayout(this, layout);
}

QWidget* ChatConfig::buildAwayPage() {
    away_ = new AwayMessagesEditor(this);
    away_->setObjectName(QStringLiteral("awayList"));
    auto* layout = new QVBoxLayout;
    layout->addWidget(away_, 1);
    return pageWithLayout(this, layout);
}

void ChatConfig::openAt(Page page) {
    reload();
    showPage(page);
    // From the page list the arrow keys walk the pages and Tab goes into the page shown.
    pages_->setFocus(Qt::OtherFocusReason);
    show();
    raise();
    activateWindow();
}

void ChatConfig::reload() {
    populate(settings_.values());
    refreshSchemeList();
    ignore_->setItems(files_.ignore().names());
    perform_->setItems(files_.perform().commands());
    away_->setMessages(files_.away().entries());
}

void ChatConfig::showPage(Page page) {
    pages_->setCurrentRow(int(page));
}

ChatConfig::Page ChatConfig::currentPage() const {
    return Page(panels_->currentIndex());
}

void ChatConfig::populate(const SettingsValues& v) {
    underline_->setChecked(v.underline);
    bold_->setChecked(v.bold);
    colors_ = v.colors;
    schemeName_ = v.scheme;
    proxyPort_->setText(v.proxyPort);
    weatherUrl_->setText(v.weatherUrl);
    radioStation_->setText(v.radioStation);
    radioInfoUrl_->setText(v.radioInfoUrl);
    selectEntry(proxyHost_, {}, v.proxyHost);
    useProxy_->setChecked(v.useProxy);
    tls_->setChecked(v.tls);
    transLevel_->setValue(v.transLevel);
    trans_->setChecked(v.trans);
    autoLogin_->setChecked(v.autoLogin);
    autoScroll_->setValue(v.autoScroll);
    playSounds_->setChecked(v.playSounds);
    timestamp_->setChecked(v.timestamp);
    autoAccept_->setChecked(v.autoAccept);
    autoJoin_->setChecked(v.autoJoin);
    autoStart_->setChecked(v.autoStart);
    tunnel_->setChecked(v.tunnel);
    serverHostChoices_ = v.serverHostChoices;
    serverPortChoices_ = v.serverPortChoices;
    selectEntry(serverHost_, serverHostChoices_, v.serverHost);
    selectEntry(serverPort_, serverPortChoices_, v.serverPort);
    ignorePms_->setChecked(v.ignorePms);
    ignoreMotd_->setChecked(v.ignoreMotd);
    smiles_->setChecked(v.smiles);
    notify_->setChecked(v.notify);
    autoReconnect_->setChecked(v.autoReconnect);
    lowerRange_->setValue(v.lowerRange);
    upperRange_->setValue(v.upperRange);
    for (int slot = 0; slot < SoundSlots::Count; ++slot) {
        sounds_[std::size_t(slot)]->setValue(v.sounds[std::size_t(slot)]);
    }
    explainServer();
    refreshColors();
}

SettingsValues ChatConfig::editedValues() const {
    SettingsValues v = settings_.defaults();
    v.underline = underline_->isChecked();
    v.bold = bold_->isChecked();
    v.colors = colors_;
    v.scheme = schemeName_;
    v.proxyPort = proxyPort_->text().trimmed();
    v.weatherUrl = weatherUrl_->text().trimmed();
    v.radioStation = radioStation_->text().trimmed();
    v.radioInfoUrl = radioInfoUrl_->text().trimmed();
    v.proxyHost = proxyHost_->currentText().trimmed();
    v.useProxy = useProxy_->isChecked();
    v.tls = tls_->isChecked();
    v.transLevel = transLevel_->value();
    v.trans = trans_->isChecked();
    v.autoLogin = autoLogin_->isChecked();
    v.autoScroll = autoScroll_->value();
    v.playSounds = playSounds_->isChecked();
    v.timestamp = timestamp_->isChecked();
    v.autoAccept = autoAccept_->isChecked();
    v.autoJoin = autoJoin_->isChecked();
    v.autoStart = autoStart_->isChecked();
    v.tunnel = tunnel_->isChecked();
    v.serverHostChoices = serverHostChoices_;
    v.serverHost = Settings::selectOrAdd(v.serverHostChoices, serverHost_->currentText().trimmed());
    v.serverPortChoices = serverPortChoices_;
    v.serverPort = Settings::selectOrAdd(v.serverPortChoices, serverPort_->currentText().trimmed());
    v.ignorePms = ignorePms_->isChecked();
    v.ignoreMotd = ignoreMotd_->isChecked();
    v.smiles = smiles_->isChecked();
    v.notify = notify_->isChecked();
    v.autoReconnect = autoReconnect_->isChecked();
    v.lowerRange = lowerRange_->value();
    v.upperRange = upperRange_->value();
    v.sounds = soundValues_;
    return v;
}

void ChatConfig::refreshColors() {
    for (int i = 0; i < ColorScheme::MessageColorCount; ++i) {
        swatches_[std::size_t(i)]->setColor(
            colors_.color(ColorScheme::Field(ColorScheme::TheirNick + i)));
    }
    preview_->setPreview(colors_, bold_->isChecked(), underline_->isChecked(), schemeName_);
}

void ChatConfig::refreshSchemeList() {
    schemes_->clear();
    schemes_->addItems(SchemeLibrary(settings_.dataRoot()).names());
    const auto current = schemes_->findItems(schemeName_, Qt::MatchFixedString);
    if (!current.isEmpty()) {
        schemes_->setCurrentItem(current.first());
    }
}

void ChatConfig::chooseColor(ColorScheme::Field field) {
    const auto chosen = colorChooser_(toQColor(colors_.color(field)), tr("Choose a colour"));
    if (chosen && chosen->isValid()) {
        colors_.setColor(field, fromQColor(*chosen));
        refreshColors();
    }
}

void ChatConfig::applyChosenScheme(const QString& name) {
    if (const auto scheme = SchemeLibrary(settings_.dataRoot()).applyAsking(prompter_, name)) {
        colors_ = *scheme;
        schemeName_ = name;
        refreshColors();
    }
}

void ChatConfig::saveScheme() {
    if (const auto name = SchemeLibrary(settings_.dataRoot()).saveAsking(prompter_, colors_)) {
        schemeName_ = *name;
        refreshSchemeList();
        refreshColors();
    }
}

void ChatConfig::removeScheme() {
    const QListWidgetItem* item = schemes_->currentItem();
    if (item != nullptr &&
        SchemeLibrary(settings_.dataRoot()).removeAsking(prompter_, item->text())) {
        refreshSchemeList();
    }
}

void ChatConfig::soundEntryActivated(int slot, int index) {
    if (index == SoundFileBox::kChooseFileIndex) {
        chooseSound(slot);
    }
}

void ChatConfig::chooseSound(int slot) {
    SoundFileBox* combo = sounds_[std::size_t(slot)];
    const QString file = fileChooser_(settings_.dataRoot() + QStringLiteral("/sounds"));
    // Backing out of the chooser leaves the slot as it was.
    combo->setValue(file.isEmpty() ? soundValues_[std::size_t(slot)] : file);
    if (!file.isEmpty() && player_ != nullptr) {
        player_->playFile(file);
    }
}

void ChatConfig::askReset() {
    const auto answer = prompter_.askYesNo(QStringLiteral("Reset Current Configuration?"),
                                           QStringLiteral("Reset Configuration?"));
    if (answer == Prompter::Answer::Yes) {
        populate(settings_.defaults());
    }
}

bool ChatConfig::commit() {
    settings_.setValues(editedValues());
    bool saved = settings_.save();

    files_.ignore().setNames(ignore_->items());
    // An emptied away list comes back as the stock messages, as it would at the next start.
    const QList<AwayMessage> away = away_->messages();
    files_.away().setEntries(away.isEmpty() ? AwayMessages::defaults() : away);
    files_.perform().setCommands(perform_->items());
    saved = files_.save() && saved;

    if (!saved) {
        prompter_.message(tr("Some settings could not be saved. Please check that the folder %1 "
                             "and the settings in %2 can be written.")
                              .arg(settings_.dataRoot(), settings_.store().location()),
                          tr("Error"), Prompter::Icon::Critical);
    }
    emit committed();
    return saved;
}

void ChatConfig::accept() {
    commit();
    QDialog::accept();
}

}  // namespace tavren
