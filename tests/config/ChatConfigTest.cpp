#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>

#include "SettingsFixture.h"
#include "config/SchemeLibrary.h"
#include "config/ui/AwayMessagesEditor.h"
#include "config/ui/ChatConfig.h"
#include "config/ui/ColorSwatch.h"
#include "config/ui/ListEditor.h"
#include "config/ui/SoundFileBox.h"
#include "contacts/DataFiles.h"
#include "core/ConnectionOptions.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

using Answer = Prompter::Answer;

class ChatConfigTest : public test::SettingsFixture {
  protected:
    void SetUp() override {
        SettingsFixture::SetUp();
        store = openStore();
        settings = std::make_unique<Settings>(*store, root(), &autostart);
        settings->load();
        files = std::make_unique<DataFiles>(root());
        files->load();
        window = std::make_unique<ChatConfig>(*settings, *files, prompter, nullptr);
    }

    template <typename T>
    T* control(const char* name) {
        T* found = window->findChild<T*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    bool storeHas(const char* section, const char* key) {
        return openStore()->contains(section, key);
    }

    std::unique_ptr<SettingsStore> store;
    std::unique_ptr<Settings> settings;
    std::unique_ptr<DataFiles> files;
    test::ScriptedPrompter prompter;
    std::unique_ptr<ChatConfig> window;
};

TEST_F(ChatConfigTest, NinePagesEachSettingItsTitle) {
    auto* pages = control<QListWidget>("lstOptions");
    auto* title = control<QLabel>("lbltitle");
    ASSERT_EQ(pages->count(), 9);
    const QStringList expected{"General", "UI Options", "Sounds",  "Proxy",
                               "Server",  "Privacy",    "Perform", "Away Msg's", "Web Services"};
    for (int row = 0; row < pages->count(); ++row) {
        EXPECT_EQ(pages->item(row)->text(), expected[row]);
    }
    window->openAt(ChatConfig::Page::AwayMessages);
    EXPECT_EQ(window->currentPage(), ChatConfig::Page::AwayMessages);
    EXPECT_EQ(title->text(), "Away Msg's");
    // The web services' addresses are edited like every other setting and kept on OK.
    window->openAt(ChatConfig::Page::WebServices);
    EXPECT_EQ(title->text(), "Web Services");
    auto* weather = control<QLineEdit>("weatherurl");
    EXPECT_EQ(weather->text(), SettingsValues::defaultWeatherUrl());
    weather->setText(QStringLiteral(" http://w.example/{code} "));
    EXPECT_EQ(window->editedValues().weatherUrl, QStringLiteral("http://w.example/{code}"));
    pages->setCurrentRow(3);
    EXPECT_EQ(window->currentPage(), ChatConfig::Page::Proxy);
    EXPECT_EQ(title->text(), "Proxy");
    EXPECT_TRUE(window->windowTitle().startsWith("Tavren Chat Settings: ("));
    EXPECT_TRUE(window->windowTitle().endsWith(")"));
    // The offscreen test platform draws no translucent windows.
    EXPECT_FALSE(control<QCheckBox>("Check12")->isEnabled());
}

TEST_F(ChatConfigTest, ControlsShowTheLoadedSettings) {
    SettingsValues v = settings->values();
    v.bold = false;
    v.serverHostChoices << "chat.example.org";
    v.serverHost = "chat.example.org";
    v.autoScroll = 11;
    v.sounds[4] = SoundSlots::disabledText();
    settings->setValues(v);
    files->ignore().add("mallory");
    window->reload();

    EXPECT_FALSE(control<QCheckBox>("Check2")->isChecked());
    EXPECT_EQ(control<QComboBox>("Combo2")->currentText(), "chat.example.org");
    EXPECT_EQ(control<QComboBox>("Combo2")->count(), 5);
    EXPECT_EQ(control<QSlider>("Slider1")->value(), 11);
    EXPECT_EQ(control<QComboBox>("Sound4")->currentText(), "x-Disabled-x");
    EXPECT_EQ(control<ListEditor>("ignoreList")->items(), QStringList{"mallory"});
    EXPECT_EQ(control<AwayMessagesEditor>("awayList")->messages(), AwayMessages::defaults());
    EXPECT_EQ(window->editedValues(), v);
}

TEST_F(ChatConfigTest, ResetAsksAndRestoresDefaultsWithoutWriting) {
    control<QCheckBox>("Check2")->setChecked(false);
    control<QComboBox>("Combo2")->setEditText("elsewhere.example.org");
    control<QLineEdit>("Text1")->setText("8080");

    prompter.answers = {Answer::No};
    window->askReset();
    ASSERT_EQ(prompter.asked.size(), 1u);
    EXPECT_EQ(prompter.asked[0].text, "Reset Current Configuration?");
    EXPECT_EQ(prompter.asked[0].title, "Reset Configuration?");
    EXPECT_FALSE(window->editedValues().bold);

    prompter.answers = {Answer::Yes};
    window->askReset();
    EXPECT_EQ(window->editedValues(), settings->defaults());
    EXPECT_EQ(control<QComboBox>("Combo2")->currentText(), "{default server #1}");
    EXPECT_EQ(control<QLineEdit>("Text1")->text(), "80");
    EXPECT_FALSE(storeHas("General", "bold"));
}

TEST_F(ChatConfigTest, OkWritesTheSettingsAndTheThreeDataFiles) {
    int commits = 0;
    QObject::connect(settings.get(), &Settings::changed, [&] { ++commits; });
    control<QCheckBox>("Check2")->setChecked(false);
    control<QCheckBox>("Check5")->setChecked(true);
    // A server typed in another letter case selects the existing entry.
    control<QComboBox>("Combo2")->setEditText("{DEFAULT SERVER #2}");
    control<QSlider>("Slider1")->setValue(5);

    auto* ignore = control<ListEditor>("ignoreList");
    ignore->input()->setText("  Mallory ");
    EXPECT_TRUE(ignore->addTyped());
    ignore->input()->setText("MALLORY");
    EXPECT_FALSE(ignore->addTyped());
    auto* perform = control<ListEditor>("performList");
    perform->input()->setText("join Lobby");
    EXPECT_FALSE(perform->addTyped());
    perform->input()->setText("/join Lobby");
    EXPECT_TRUE(perform->addTyped());
    auto* away = control<AwayMessagesEditor>("awayList");
    away->addMessage();
    away->nameEdit()->setText("Lunch..");
    emit away->nameEdit()->textEdited("Lunch..");
    away->textEdit()->setPlainText("Out for lunch.");

    window->accept();

    EXPECT_EQ(commits, 1);
    EXPECT_FALSE(settings->values().bold);
    EXPECT_EQ(settings->values().serverHost, "{default server #2}");
    EXPECT_EQ(settings->values().serverHostChoices.size(), 4);
    EXPECT_EQ(settings->scrollThreshold(), 11);
    auto reread = openStore();
    EXPECT_EQ(reread->value("General", "bold"), "0");
    EXPECT_EQ(reread->value("General", "serverhost"), "{default server #2}");
    EXPECT_EQ(reread->value("General", "AutoScroll"), "5");
    EXPECT_EQ(autostart.requests, std::vector<bool>{true});

    DataFiles next(root());
    next.load();
    EXPECT_EQ(next.ignore().names(), QStringList{"Mallory"});
    EXPECT_EQ(next.perform().commands(), QStringList{"/join Lobby"});
    ASSERT_EQ(next.away().entries().size(), 3);
    EXPECT_EQ(next.away().entries()[2], (AwayMessage{"Lunch..", "Out for lunch."}));
}

TEST_F(ChatConfigTest, CancelLeavesSettingsStoreAndFilesAlone) {
    const SettingsValues before = settings->values();
    control<QCheckBox>("Check2")->setChecked(false);
    control<QCheckBox>("Check7")->setChecked(false);
    auto* ignore = control<ListEditor>("ignoreList");
    ignore->input()->setText("mallory");
    ignore->addTyped();
    window->reject();

    EXPECT_EQ(settings->values(), before);
    EXPECT_FALSE(storeHas("General", "bold"));
    EXPECT_FALSE(storeHas("Sounds", "Play"));
    EXPECT_FALSE(QFile::exists(root() + "/ignore.dat"));
    EXPECT_TRUE(autostart.requests.empty());

    // Opening again starts from the shared values, not from the abandoned edits.
    window->openAt(ChatConfig::Page::Privacy);
    EXPECT_TRUE(control<QCheckBox>("Check2")->isChecked());
    EXPECT_TRUE(ignore->items().isEmpty());
}

TEST_F(ChatConfigTest, SwatchesSchemesAndPreviewWorkOnTheCopy) {
    window->setColorChooser([](const QColor&, const QString&) { return QColor(255, 0, 0); });
    emit control<ColorSwatch>("Picture9")->clicked();
    EXPECT_EQ(window->editedValues().color(ColorScheme::OwnNick), 255u);
    EXPECT_EQ(settings->values().color(ColorScheme::OwnNick), 8421504u);

    prompter.texts = {QString("Red")};
    control<QPushButton>("cmdSaveScheme")->click();
    SchemeLibrary library(root());
    ASSERT_TRUE(library.exists("Red"));
    EXPECT_EQ(library.read("Red")->color(ColorScheme::OwnNick), 255u);
    EXPECT_EQ(window->editedValues().scheme, "Red");
    EXPECT_EQ(control<QLabel>("Label26")->text(), "Red");

    // A damaged scheme is refused and changes nothing.
    QDir().mkpath(library.folder());
    writeFile("schemes/Bad.tvx",
              "1\x02"
              "2");
    window->reload();
    auto* list = control<QListWidget>("File1");
    ASSERT_EQ(list->count(), 2);
    const SettingsValues beforeBad = window->editedValues();
    prompter.asked.clear();
    emit list->itemClicked(list->findItems("Bad", Qt::MatchExactly).first());
    ASSERT_EQ(prompter.asked.size(), 1u);
    EXPECT_EQ(prompter.asked[0].text, "Improper Tavren Scheme");
    EXPECT_EQ(window->editedValues(), beforeBad);

    emit list->itemClicked(list->findItems("Red", Qt::MatchExactly).first());
    EXPECT_EQ(window->editedValues().color(ColorScheme::OwnNick), 255u);
    EXPECT_EQ(window->editedValues().scheme, "Red");
}

TEST_F(ChatConfigTest, SoundSlotsChooseAFileOrSwitchOffAndShowTheFileByName) {
    QString startedIn;
    QString answer = "/music/bells and whistles/bell.wav";
    window->setFileChooser([&](const QString& folder) {
        startedIn = folder;
        return answer;
    });
    control<QPushButton>("Command9_6")->click();
    EXPECT_EQ(startedIn, root() + "/sounds");
    EXPECT_EQ(window->editedValues().sounds[6], answer);
    // The box shows the file's name; the whole path is its tooltip.
    auto* combo = control<SoundFileBox>("Sound6");
    EXPECT_EQ(combo->currentText(), "bell.wav");
    EXPECT_EQ(combo->toolTip(), answer);

    // Backing out of the chooser keeps the slot's file.
    const QString chosen = answer;
    answer.clear();
    combo->setCurrentIndex(SoundFileBox::kChooseFileIndex);
    emit combo->activated(SoundFileBox::kChooseFileIndex);
    EXPECT_EQ(combo->currentText(), "bell.wav");
    EXPECT_EQ(window->editedValues().sounds[6], chosen);

    // Switched off, the file stays one pick away.
    combo->setCurrentIndex(SoundFileBox::kDisabledIndex);
    EXPECT_EQ(window->editedValues().sounds[6], "x-Disabled-x");
    EXPECT_EQ(combo->itemText(0), "*Choose File*");
    combo->setCurrentIndex(SoundFileBox::kFileIndex);
    EXPECT_EQ(window->editedValues().sounds[6], chosen);

    // The stock sounds show their names too, whatever folder the data root is in.
    EXPECT_EQ(control<SoundFileBox>("Sound0")->currentText(), "buddy_online.wav");
    EXPECT_EQ(control<SoundFileBox>("Sound0")->value(), root() + "/sounds/buddy_online.wav");
}

TEST_F(ChatConfigTest, TheServerPageSaysWhatTheKeywordsStandFor) {
    const ConnectionOptions deployment = ConnectionOptions::deployment();
    auto* host = control<QComboBox>("Combo2");
    auto* port = control<QComboBox>("Combo3");
    auto* hostMeaning = control<QLabel>("serverHostMeaning");
    auto* portMeaning = control<QLabel>("serverPortMeaning");
    // The keywords stay the stored values; beside them is where they lead.
    EXPECT_EQ(host->currentText(), "{default server #1}");
    EXPECT_EQ(hostMeaning->text(), "= " + deployment.defaultServers.value(0));
    EXPECT_EQ(port->currentText(), "{Default Port}");
    EXPECT_EQ(portMeaning->text(), "= " + QString::number(deployment.defaultPort));

    host->setEditText("chat.example.org");
    port->setEditText("5679");
    EXPECT_TRUE(hostMeaning->text().isEmpty()) << "a host typed by hand needs no explaining";
    EXPECT_TRUE(portMeaning->text().isEmpty());
    port->setEditText("abc");
    EXPECT_EQ(portMeaning->text(), "not a port number");
    EXPECT_EQ(window->editedValues().serverHost, "chat.example.org");
}

}  // namespace
}  // namespace tavren
