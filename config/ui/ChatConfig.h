#pragma once

#include <QColor>
#include <QDialog>
#include <array>
#include <functional>
#include <optional>

#include "config/ColorScheme.h"
#include "config/SettingsValues.h"
#include "config/SoundSlots.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QSlider;
class QSpinBox;
class QStackedWidget;

namespace tavren {

class AwayMessagesEditor;
class ColorPreview;
class ColorSwatch;
class DataFiles;
class ListEditor;
class Prompter;
class Settings;
class SoundFileBox;
class SoundPlayer;

// The settings window. It edits a copy of the shared settings and of the away, ignore and
// perform lists; OK commits the copy (store and data files), Cancel drops it. Colour-scheme
// files are saved and removed at once, as the user asks for each.
class ChatConfig : public QDialog {
    Q_OBJECT

  public:
    enum class Page {
        General = 0,
        UiOptions,
        Sounds,
        Proxy,
        Server,
        Privacy,
        Perform,
        AwayMessages,
        WebServices
    };

    // The chooser seams let tests stand in for the modal colour and file dialogs.
    using ColorChooser =
        std::function<std::optional<QColor>(const QColor& initial, const QString& title)>;
    using FileChooser = std::function<QString(const QString& startFolder)>;

    // `player` may be null: chosen sounds are then not played back.
    ChatConfig(Settings& settings, DataFiles& files, Prompter& prompter, SoundPlayer* player,
               QWidget* parent = nullptr);

    // Takes a fresh copy of the settings and lists, shows `page` and brings the window up.
    void openAt(Page page = Page::General);
    // Takes a fresh copy of the settings and lists into the controls.
    void reload();
    void showPage(Page page);
    Page currentPage() const;
    static QStringList pageNames();

    // What OK would commit.
    SettingsValues editedValues() const;

    void setColorChooser(ColorChooser chooser) { colorChooser_ = std::move(chooser); }
    void setFileChooser(FileChooser chooser) { fileChooser_ = std::move(chooser); }

    static QString caption();
    // Whether this platform can draw translucent windows.
    static bool windowOpacitySupported();

  public slots:
    // Asks, then puts every control back to its default; nothing is written until OK.
    void askReset();
    // Writes the settings and the three data files; false (after telling the user) when
    // something could not be written.
    bool commit();
    void accept() override;

  signals:
    void committed();
    // The window opacity the translucency controls show now (1 = opaque), not yet committed.
    void opacityPreviewed(double opacity);

  private:
    QWidget* buildGeneralPage();
    QWidget* buildUiOptionsPage();
    QWidget* buildSoundsPage();
    QWidget* buildProxyPage();
    QWidget* buildServerPage();
    QWidget* buildPrivacyPage();
    QWidget* buildPerformPage();
    QWidget* buildAwayPage();
    QWidget* buildWebPage();
    QCheckBox* checkBox(const QString& name, const QString& text);
    QSlider* levelSlider(const QString& name, int minimum, int maximum);
    QComboBox* editableCombo(const QString& name);

    void populate(const SettingsValues& values);
    void refreshColors();
    void refreshSchemeList();
    void chooseColor(ColorScheme::Field field);
    void applyChosenScheme(const QString& name);
    void saveScheme();
    void removeScheme();
    void chooseSound(int slot);
    void soundEntryActivated(int slot, int index);
    // Says beside the server and port what their keywords stand for.
    void explainServer();

    Settings& settings_;
    DataFiles& files_;
    Prompter& prompter_;
    SoundPlayer* player_;
    ColorChooser colorChooser_;
    FileChooser fileChooser_;

    ColorScheme colors_;
    QString schemeName_;
    QStringList serverHostChoices_;
    QStringList serverPortChoices_;
    std::array<QString, SoundSlots::Count> soundValues_;

    QListWidget* pages_;
    QStackedWidget* panels_;
    QLabel* title_;

    QCheckBox* underline_;
    QCheckBox* bold_;
    QCheckBox* useProxy_;
    QCheckBox* autoLogin_;
    QCheckBox* tls_;
    QCheckBox* autoStart_;
    QCheckBox* smiles_;
    QCheckBox* notify_;
    QCheckBox* playSounds_;
    QCheckBox* ignorePms_;
    QCheckBox* ignoreMotd_;
    QCheckBox* autoJoin_;
    QCheckBox* autoReconnect_;
    QCheckBox* trans_;
    QCheckBox* timestamp_;
    QCheckBox* tunnel_;
    QCheckBox* autoAccept_;
    std::array<ColorSwatch*, ColorScheme::MessageColorCount> swatches_{};
    ColorPreview* preview_;
    QListWidget* schemes_;
    QSlider* autoScroll_;
    QSlider* transLevel_;
    QLineEdit* proxyPort_;
    QLineEdit* weatherUrl_;
    QLineEdit* radioStation_;
    QLineEdit* radioInfoUrl_;
    QComboBox* proxyHost_;
    QComboBox* serverHost_;
    QComboBox* serverPort_;
    QLabel* serverHostMeaning_;
    QLabel* serverPortMeaning_;
    QSpinBox* lowerRange_;
    QSpinBox* upperRange_;
    std::array<SoundFileBox*, SoundSlots::Count> sounds_{};
    ListEditor* ignore_;
    ListEditor* perform_;
    AwayMessagesEditor* away_;
};

}  // namespace tavren
