#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFontComboBox>
#include <QImage>
#include <QKeyEvent>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QToolButton>

#include "render/ui/ChatNickFormat.h"
#include "render/ui/ChatPane.h"
#include "render/ui/SmileyPicker.h"

namespace tavren {
namespace {

QString makeDataRoot(QTemporaryDir& root, std::initializer_list<int> pictures) {
    QDir(root.path()).mkpath("smiles");
    QImage picture(19, 19, QImage::Format_ARGB32);
    picture.fill(Qt::yellow);
    for (const int number : pictures) {
        picture.save(root.path() + "/smiles/" + QString::number(100 + number) + ".gif", "PNG");
    }
    return root.path();
}

TEST(RenderWidgetsTest, SmileyPickerOffersEveryCodeAndHandsOnTheChosenOne) {
    QTemporaryDir root;
    SmileyPicker picker(makeDataRoot(root, {1, 49}));
    const auto buttons = picker.findChildren<QToolButton*>();
    ASSERT_EQ(buttons.size(), 53);
    const auto button = [&](int number) {
        return picker.findChild<QToolButton*>("smiley" + QString::number(number));
    };
    EXPECT_FALSE(button(49)->icon().isNull());
    EXPECT_TRUE(button(49)->text().isEmpty());
    EXPECT_EQ(button(2)->text(), ";2");  // no file: the code stands in for the picture
    EXPECT_EQ(button(49)->toolTip(), ";49  :-)");
    EXPECT_EQ(button(47)->toolTip(), ";47  =-o");
    EXPECT_EQ(button(7)->toolTip(), ";7");
    // The halo face cannot be typed as "o:-)": the smile inside it is replaced first.
    EXPECT_EQ(button(52)->toolTip(), ";52");

    QWidget anchor;
    anchor.resize(100, 30);
    anchor.show();
    picker.popupBelow(&anchor);
    EXPECT_TRUE(picker.isVisible());
    EXPECT_TRUE(picker.windowFlags().testFlag(Qt::Popup));
    QStringList chosen;
    QObject::connect(&picker, &SmileyPicker::smileyChosen,
                     [&](const QString& code) { chosen.append(code); });
    button(12)->click();
    EXPECT_EQ(chosen, QStringList{";12"});
    EXPECT_FALSE(picker.isVisible());
}

class ChatNickFormatTest : public ::testing::Test {
  protected:
    QTemporaryDir root;
    QString dataRoot = makeDataRoot(root, {49});
};

TEST_F(ChatNickFormatTest, ShowsTheFormatAndGivesBackWhatWasChosen) {
    ChatNickFormat dialog(
        "255;16711680;True;True;False;5;" + QFontComboBox().currentFont().family(), "alice",
        dataRoot);
    const auto format = NicknameFormat::parse(dialog.formatText());
    ASSERT_TRUE(format);
    EXPECT_EQ(format->nameColor, 255u);
    EXPECT_EQ(format->textColor, 0xFF0000u);
    EXPECT_TRUE(format->bold);
    EXPECT_TRUE(format->italic);
    EXPECT_FALSE(format->underline);
    EXPECT_EQ(format->size, 5);

    dialog.findChild<QCheckBox*>()->setChecked(false);  // bold
    dialog.findChild<QSpinBox*>()->setValue(3);
    const auto changed = NicknameFormat::parse(dialog.formatText());
    ASSERT_TRUE(changed);
    EXPECT_FALSE(changed->bold);
    EXPECT_EQ(changed->size, 3);

    // The sample is the real formatter's line in the chosen style, shown in a real pane.
    EXPECT_TRUE(dialog.previewHtml().contains("<b>alice:</b>"));
    EXPECT_TRUE(dialog.previewHtml().contains("<i>Hello everyone <img border='0'"));
    EXPECT_TRUE(dialog.previewHtml().contains("size='3'"));
    const auto* preview = dialog.findChild<ChatPane*>();
    ASSERT_NE(preview, nullptr);
    EXPECT_EQ(preview->bodyHtml(), dialog.previewHtml());
    EXPECT_TRUE(preview->toPlainText().contains("alice:"));
}

TEST_F(ChatNickFormatTest, StartsFromDefaultsForNoOrUnreadableFormats) {
    for (const QString& start :
         {QString(), QString("garbage;;"), QString("0;0;True;True;True;9;X")}) {
        ChatNickFormat dialog(start, "bob", dataRoot);
        const auto format = NicknameFormat::parse(dialog.formatText());
        ASSERT_TRUE(format) << start.toStdString();
        EXPECT_EQ(format->size, NicknameFormat::DefaultSize);
        EXPECT_EQ(format->nameColor, ChatNickFormat::defaultFormat().nameColor);
        EXPECT_FALSE(format->bold || format->italic || format->underline);
    }
}

TEST_F(ChatNickFormatTest, DefaultColoursClearTheFormat) {
    ChatNickFormat dialog("255;0;False;False;False;2;Arial", "carol", dataRoot);
    const auto buttons = dialog.findChildren<QPushButton*>();
    const auto defaults = std::find_if(buttons.begin(), buttons.end(), [](QPushButton* button) {
        return button->text().remove('&') == "Use My Default Colours";
    });
    ASSERT_NE(defaults, buttons.end());
    (*defaults)->click();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_TRUE(dialog.formatText().isEmpty());
}

TEST_F(ChatNickFormatTest, OpensReadyToTypeAndEnterAccepts) {
    ChatNickFormat dialog("", "dave", dataRoot);
    dialog.show();
    dialog.activateWindow();
    QApplication::processEvents();
    EXPECT_EQ(dialog.focusWidget(), dialog.findChild<QFontComboBox*>());
    // Nothing is cut off: the dialog is at least as large as its contents need.
    EXPECT_GE(dialog.width(), dialog.minimumSizeHint().width());
    EXPECT_GE(dialog.height(), dialog.minimumSizeHint().height());
    EXPECT_EQ(dialog.minimumSize(), dialog.minimumSizeHint());

    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(dialog.focusWidget(), &enter);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_FALSE(dialog.formatText().isEmpty());
}

}  // namespace
}  // namespace tavren
