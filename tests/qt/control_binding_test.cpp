#include "qt/control_binding.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QWidget>
#include <algorithm>
#include <string>
#include <vector>

#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"
#include "platform/controls/form.h"
#include "platform/controls/text_box.h"
#include "platform/host/host_context.h"
#include "qt/colours.h"
#include "qt/model_action.h"

namespace qx {
namespace {

// A form with one control of each kind, shown in a window with a widget of
// each kind, so that the controls can act (a control takes user actions only
// on a form).
class Controls : public Form {
public:
    Controls() : Form(L"Controls") {
        addControls({&label, &button, &text, &check, &optionA, &optionB, &combo, &frame});
        Show();
    }
    Label label{L"label"};
    CommandButton button{L"button"};
    TextBox text{L"text"};
    CheckBox check{L"check"};
    OptionButton optionA{L"optionA"};
    OptionButton optionB{L"optionB"};
    ComboBox combo{L"combo"};
    Frame frame{L"frame"};
};

class ControlBindingTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    Controls form;
    QWidget window;
    QLabel* label = new QLabel(&window);
    QPushButton* button = new QPushButton(&window);
    QLineEdit* text = new QLineEdit(&window);
    QCheckBox* check = new QCheckBox(&window);
    QRadioButton* optionA = new QRadioButton(&window);
    QRadioButton* optionB = new QRadioButton(&window);
    QComboBox* combo = new QComboBox(&window);
    QGroupBox* frame = new QGroupBox(&window);

    void SetUp() override {
        window.resize(400, 300);
        label->setGeometry(0, 0, 100, 20);
        text->setGeometry(0, 30, 200, 24);
        window.show();
    }
};

TEST_F(ControlBindingTest, AWidgetOfAnotherKindIsNotBound) {
    EXPECT_EQ(ControlBinding::bind(form.label, *text), nullptr);
    EXPECT_EQ(ControlBinding::bind(form.text, *label), nullptr);
    EXPECT_EQ(ControlBinding::bind(form.check, *optionA), nullptr);
    EXPECT_NE(ControlBinding::bind(form.button, *button), nullptr);
}

TEST_F(ControlBindingTest, TheModelIsShownAtOnceAndOnEveryChange) {
    form.label.Caption(L"Name :");
    form.label.ToolTipText(L"tip");
    auto binding = ControlBinding::bind(form.label, *label);
    EXPECT_EQ(label->text(), QStringLiteral("Name :"));
    EXPECT_EQ(label->toolTip(), QStringLiteral("tip"));
    form.label.Caption(L"Other");
    EXPECT_EQ(label->text(), QStringLiteral("Other"));
    form.label.Enabled(false);
    EXPECT_FALSE(label->isEnabled());
    form.label.Visible(false);
    EXPECT_FALSE(label->isVisible());
    form.label.Font(qx::Font{L"DejaVu Sans", 12});
    EXPECT_EQ(label->font().pointSizeF(), 12.0);
    // Unbound, the widget hears nothing more.
    binding.reset();
    form.label.Caption(L"Gone");
    EXPECT_EQ(label->text(), QStringLiteral("Other"));
}

TEST_F(ControlBindingTest, ClickingALabelOrAButtonIsTheModelsClick) {
    int labelClicks = 0, buttonClicks = 0;
    form.label.OnClick = [&] { ++labelClicks; };
    form.button.OnClick = [&] { ++buttonClicks; };
    auto labelBinding = ControlBinding::bind(form.label, *label);
    auto buttonBinding = ControlBinding::bind(form.button, *button);
    form.button.Caption(L"OK");
    EXPECT_EQ(button->text(), QStringLiteral("OK"));
    QTest::mouseClick(label, Qt::LeftButton);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(labelClicks, 1);
    EXPECT_EQ(buttonClicks, 1);
    form.button.Enabled(false);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(buttonClicks, 1);
}

TEST_F(ControlBindingTest, DoubleClickingALabelIsTheModelsDblClickOnce) {
    std::vector<std::string> heard;
    form.label.OnClick = [&] { heard.emplace_back("Click"); };
    form.label.OnDblClick = [&] { heard.emplace_back("DblClick"); };
    auto binding = ControlBinding::bind(form.label, *label);
    QTest::mouseDClick(label, Qt::LeftButton);
    EXPECT_EQ(std::count(heard.begin(), heard.end(), "DblClick"), 1);
    form.label.Enabled(false);
    QTest::mouseDClick(label, Qt::LeftButton);
    EXPECT_EQ(std::count(heard.begin(), heard.end(), "DblClick"), 1);
}

TEST_F(ControlBindingTest, KeysTypedIntoATextBoxAreTheModelsKeyPresses) {
    int changes = 0;
    std::vector<int32_t> keys;
    form.text.OnChange = [&] { ++changes; };
    form.text.OnKeyPress = [&](int32_t& key) {
        keys.push_back(key);
        if (key == '!') key = 0;  // the dialog swallows it
    };
    form.text.MaxLength(5);
    auto binding = ControlBinding::bind(form.text, *text);
    QTest::keyClicks(text, QStringLiteral("ab!cdefg"));
    EXPECT_EQ(form.text.Text(), L"abcde");
    EXPECT_EQ(text->text(), QStringLiteral("abcde"));
    EXPECT_EQ(changes, 5);
    EXPECT_EQ(keys, (std::vector<int32_t>{'a', 'b', '!', 'c', 'd', 'e', 'f', 'g'}));
    QTest::keyClick(text, Qt::Key_Backspace);
    EXPECT_EQ(form.text.Text(), L"abcd");
    QTest::keyClick(text, Qt::Key_Home);
    EXPECT_EQ(form.text.SelStart(), 0);
    QTest::keyClick(text, Qt::Key_Delete);
    EXPECT_EQ(form.text.Text(), L"bcd");
    EXPECT_EQ(text->text(), QStringLiteral("bcd"));
    // Code sets the text past the limit; the widget shows the model.
    form.text.Text(L"longer text");
    EXPECT_EQ(text->text(), QStringLiteral("longer text"));
}

TEST_F(ControlBindingTest, ATextBoxShowsTheSelectionItsDialogMakesWhenItGetsTheFocus) {
    form.text.Text(L"Old");
    form.text.OnGotFocus = [&] {
        form.text.SelStart(1);
        form.text.SelLength(2);
    };
    auto binding = ControlBinding::bind(form.text, *text);
    auto buttonBinding = ControlBinding::bind(form.button, *button);
    QApplication::setActiveWindow(&window);
    text->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(form.ActiveControl(), &form.text);
    EXPECT_EQ(text->selectedText(), QStringLiteral("ld"));
    EXPECT_EQ(text->selectionStart(), 1);
    // Reached by a click, the same: the click that brings the focus places no caret.
    button->setFocus(Qt::TabFocusReason);
    QTest::mouseClick(text, Qt::LeftButton, {}, QPoint(2, text->height() / 2));
    EXPECT_EQ(text->selectedText(), QStringLiteral("ld"));
    EXPECT_EQ(form.text.SelStart(), 1);
    EXPECT_EQ(form.text.SelLength(), 2);
    QTest::keyClicks(text, QStringLiteral("X"));
    EXPECT_EQ(form.text.Text(), L"OX");
}

TEST_F(ControlBindingTest, ATextBoxWhoseDialogSetsNoSelectionKeepsItsCaretWhenReachedByKeys) {
    form.text.Text(L"Old");
    form.text.SelStart(1);
    auto binding = ControlBinding::bind(form.text, *text);
    QApplication::setActiveWindow(&window);
    text->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(form.ActiveControl(), &form.text);
    EXPECT_EQ(text->selectedText(), QString());
    EXPECT_EQ(text->cursorPosition(), 1);
    EXPECT_EQ(form.text.SelStart(), 1);
    EXPECT_EQ(form.text.SelLength(), 0);
    QTest::keyClicks(text, QStringLiteral("X"));
    EXPECT_EQ(form.text.Text(), L"OXld");
}

TEST_F(ControlBindingTest, AClickIntoATextBoxWhoseDialogSetsNoSelectionPutsTheCaretWhereItLands) {
    form.text.Text(L"Old");
    auto binding = ControlBinding::bind(form.text, *text);
    auto buttonBinding = ControlBinding::bind(form.button, *button);
    QApplication::setActiveWindow(&window);
    button->setFocus(Qt::TabFocusReason);
    QTest::mouseClick(text, Qt::LeftButton, {}, QPoint(text->width() - 4, text->height() / 2));
    EXPECT_EQ(form.ActiveControl(), &form.text);
    EXPECT_EQ(text->cursorPosition(), 3);
    EXPECT_EQ(form.text.SelStart(), 3);
    EXPECT_EQ(form.text.SelLength(), 0);
}

TEST_F(ControlBindingTest, ALockedTextBoxTakesNoTyping) {
    auto binding = ControlBinding::bind(form.text, *text);
    form.text.Text(L"keep");
    form.text.Locked(true);
    EXPECT_TRUE(text->isReadOnly());
    QTest::keyClicks(text, QStringLiteral("xy"));
    QTest::keyClick(text, Qt::Key_Delete);
    EXPECT_EQ(form.text.Text(), L"keep");
}

TEST_F(ControlBindingTest, ACheckBoxShowsItsThreeValuesAndAClickIsTheModels) {
    int clicks = 0;
    form.check.OnClick = [&] { ++clicks; };
    auto binding = ControlBinding::bind(form.check, *check);
    form.check.Value(CheckBox::Grayed);
    EXPECT_EQ(check->checkState(), Qt::PartiallyChecked);
    EXPECT_EQ(clicks, 1);
    QTest::mouseClick(check, Qt::LeftButton);
    EXPECT_EQ(form.check.Value(), CheckBox::Checked);
    EXPECT_EQ(check->checkState(), Qt::Checked);
    EXPECT_EQ(clicks, 2);
    QTest::mouseClick(check, Qt::LeftButton);
    EXPECT_EQ(form.check.Value(), CheckBox::Unchecked);
    EXPECT_EQ(check->checkState(), Qt::Unchecked);
}

TEST_F(ControlBindingTest, OptionButtonsFollowTheModelsGroup) {
    int clicksB = 0;
    form.optionB.OnClick = [&] { ++clicksB; };
    auto a = ControlBinding::bind(form.optionA, *optionA);
    auto b = ControlBinding::bind(form.optionB, *optionB);
    form.optionA.Value(true);
    EXPECT_TRUE(optionA->isChecked());
    QTest::mouseClick(optionB, Qt::LeftButton);
    EXPECT_TRUE(form.optionB.Value());
    EXPECT_FALSE(form.optionA.Value());
    EXPECT_TRUE(optionB->isChecked());
    EXPECT_FALSE(optionA->isChecked());
    EXPECT_EQ(clicksB, 1);
}

TEST_F(ControlBindingTest, AComboBoxShowsItsListAndAChoiceIsTheModelsSelect) {
    int clicks = 0;
    form.combo.OnClick = [&] { ++clicks; };
    form.combo.AddItem(L"COM1", 1);
    form.combo.AddItem(L"COM2", 2);
    auto binding = ControlBinding::bind(form.combo, *combo);
    ASSERT_EQ(combo->count(), 2);
    EXPECT_EQ(combo->itemText(1), QStringLiteral("COM2"));
    EXPECT_EQ(combo->itemData(1).toInt(), 2);
    EXPECT_EQ(combo->currentIndex(), -1);
    form.combo.AddItem(L"COM3", 3);
    EXPECT_EQ(combo->count(), 3);
    form.combo.ListIndex(0);
    EXPECT_EQ(combo->currentIndex(), 0);
    EXPECT_EQ(clicks, 1);
    QTest::keyClick(combo, Qt::Key_Down);
    EXPECT_EQ(form.combo.ListIndex(), 1);
    EXPECT_EQ(clicks, 2);
    form.combo.Clear();
    EXPECT_EQ(combo->count(), 0);
}

TEST_F(ControlBindingTest, AFrameShowsItsCaptionAsTitle) {
    form.frame.Caption(L"Terminators");
    auto binding = ControlBinding::bind(form.frame, *frame);
    EXPECT_EQ(frame->title(), QStringLiteral("Terminators"));
}

TEST(KeyAscii, KeysBecomeTheCodesTheModelsTake) {
    EXPECT_EQ(keyAsciiOf(Qt::Key_Backspace, QString()), 8);
    EXPECT_EQ(keyAsciiOf(Qt::Key_Return, QStringLiteral("\r")), 13);
    EXPECT_EQ(keyAsciiOf(Qt::Key_Enter, QString()), 13);
    EXPECT_EQ(keyAsciiOf(Qt::Key_Escape, QString()), 27);
    EXPECT_EQ(keyAsciiOf(Qt::Key_A, QStringLiteral("a")), 'a');
    EXPECT_EQ(keyAsciiOf(Qt::Key_Bar, QStringLiteral("|")), '|');
    EXPECT_EQ(keyAsciiOf(Qt::Key_unknown, QString(QChar(0x20AC))), 0x20AC);
    EXPECT_EQ(keyAsciiOf(Qt::Key_unknown, QString::fromUcs4(U"\U0001F600")), 0x1F600);
    EXPECT_EQ(keyAsciiOf(Qt::Key_Left, QString()), 0);
    EXPECT_EQ(keyAsciiOf(Qt::Key_A, QString(QChar(1))), 0);  // Ctrl+A is no character
}

TEST(Colours, OleColoursAreRedGreenBlueFromTheLowByteAndSystemColoursComeFromThePalette) {
    QPalette palette;
    palette.setColor(QPalette::Button, QColor(1, 2, 3));
    palette.setColor(QPalette::Base, QColor(4, 5, 6));
    EXPECT_EQ(toQColor(0x000000FF, palette), QColor(255, 0, 0));
    EXPECT_EQ(toQColor(0x00FF8000, palette), QColor(0, 128, 255));
    EXPECT_EQ(toQColor(colour::ButtonFace, palette), QColor(1, 2, 3));
    EXPECT_EQ(toQColor(colour::Window, palette), QColor(4, 5, 6));
}

TEST(Colours, APictureOfTheHostBecomesAPixmapPixelForPixel) {
    auto picture = std::make_shared<Picture>();
    picture->Width = 2;
    picture->Height = 2;
    // Blue, green, red; rows from the top.
    picture->Pixels = {255, 0, 0, 0, 255, 0, 0, 0, 255, 10, 20, 30};
    const QImage image = toQPixmap(picture).toImage();
    ASSERT_EQ(image.size(), QSize(2, 2));
    EXPECT_EQ(image.pixelColor(0, 0), QColor(0, 0, 255));
    EXPECT_EQ(image.pixelColor(1, 0), QColor(0, 255, 0));
    EXPECT_EQ(image.pixelColor(0, 1), QColor(255, 0, 0));
    EXPECT_EQ(image.pixelColor(1, 1), QColor(30, 20, 10));
    EXPECT_TRUE(toQPixmap(nullptr).isNull());
    picture->Pixels.resize(5);  // shorter than its size says
    EXPECT_TRUE(toQPixmap(picture).isNull());
}

TEST_F(ControlBindingTest, AnErrorOfTheDialogsCodeIsKeptForTheDriverAndNeverReachesQt) {
    form.button.OnClick = [] { throw RuntimeError(13, L"test", L"Type mismatch"); };
    auto binding = ControlBinding::bind(form.button, *button);
    int aborted = 0;
    const auto previous = setModelActionAbort([&] { ++aborted; });
    QTest::mouseClick(button, Qt::LeftButton);
    setModelActionAbort(previous);
    EXPECT_EQ(aborted, 1);
    const std::exception_ptr error = takeModelActionError();
    ASSERT_TRUE(error);
    try {
        std::rethrow_exception(error);
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.Number(), 13);
    }
    // Taken once.
    EXPECT_FALSE(takeModelActionError());
}

TEST_F(ControlBindingTest, PositionsCountCharactersAlsoBeyondTheBasicPlane) {
    auto binding = ControlBinding::bind(form.text, *text);
    form.text.Text(L"a\U0001F600bc");
    form.text.SelStart(2);
    form.text.SelLength(1);
    // In Qt the emoji takes two units: b is at 3.
    EXPECT_EQ(text->selectionStart(), 3);
    EXPECT_EQ(text->selectedText(), QStringLiteral("b"));
    text->setSelection(1, 2);
    EXPECT_EQ(form.text.SelStart(), 1);
    EXPECT_EQ(form.text.SelLength(), 1);
}

}  // namespace
}  // namespace qx
