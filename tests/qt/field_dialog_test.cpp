// The field dialog on screen, driven by real key and mouse events through the
// Qt modal driver, against the same edits made headless; and a screenshot of
// each of its tabs, checked for what a person would see wrong.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTableView>
#include <QTest>
#include <functional>
#include <string>
#include <vector>

#include "field_editors/field_editors.h"
#include "field_editors/frm_protocol_hex_selector.h"
#include "field_editors/frm_protocol_vars.h"
#include "message/editor_hooks.h"
#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "platform/host/host_context.h"
#include "qt/form_binding.h"
#include "qt/form_views.h"
#include "qt/qt_modal_driver.h"
#include "qt/qt_text.h"
#include "qt_test_support.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

template <class W>
W* child(QWidget& window, const char* name) {
    W* widget = window.findChild<W*>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

void click(QWidget& window, const char* name) {
    if (auto* widget = child<QWidget>(window, name)) QTest::mouseClick(widget, Qt::LeftButton);
}

// Tab n of the dialog is index n - 1 of the bar.
void clickTab(QWidget& window, int tab) {
    auto* bar = child<QTabBar>(window, "tbSMSVars");
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(tab - 1).center());
}

void pressDown(QWidget& window, const char* name, int times) {
    auto* combo = child<QComboBox>(window, name);
    combo->setFocus(Qt::TabFocusReason);
    for (int i = 0; i < times; ++i) QTest::keyClick(combo, Qt::Key_Down);
}

// A check box is clicked on its indicator.
void tick(QWidget& window, const char* name) {
    auto* box = child<QCheckBox>(window, name);
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
}

QPoint cellCentre(QTableView& view, int row, int col) {
    return view.visualRect(view.model()->index(row - 1, col)).center();
}

template <class Field>
std::shared_ptr<Field> fieldAt(int32_t position) {
    auto field = std::make_shared<Field>();
    field->StartPosition(position);
    return field;
}

using test::linkOperand;
using test::memoryChoice;

// What a person sees wrong in a window: a visible text wider than its widget.
std::vector<QString> clippedTexts(QWidget& window) {
    std::vector<QString> clipped;
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisibleTo(&window) || widget->objectName().isEmpty()) continue;
        int needed = 0;
        if (auto* button = qobject_cast<QPushButton*>(widget))
            needed = button->fontMetrics().horizontalAdvance(button->text()) + 6;
        else if (qobject_cast<QLabel*>(widget) || qobject_cast<QAbstractButton*>(widget))
            needed = widget->minimumSizeHint().width();
        if (widget->width() < needed) clipped.push_back(widget->objectName());
    }
    return clipped;
}

class QtFieldDialogTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    ScopedEditorHooks hooks;
    std::shared_ptr<ModalDriver> scripted = context->Driver;
    // The scripted person's queue, reachable while the Qt driver is installed.
    ScriptedModalDriver& person = *context->Script();
    std::shared_ptr<ModalDriver> onScreen = std::make_shared<QtModalDriver>();

    void SetUp() override {
        context->Driver = onScreen;
        installFieldEditors();
    }

    // Runs the script with the scripted person instead of the widgets.
    template <class F>
    auto headless(F&& run) {
        context->Driver = scripted;
        auto result = run();
        context->Driver = onScreen;
        return result;
    }
    void onDialog(std::function<void(frmProtocolVars&)> script) {
        person.QueueDialog(scriptFor<frmProtocolVars>(std::move(script)));
    }
    // The same dialog played by the scripted person.
    VarPtr editHeadless(VarPtr field, int32_t methodType, std::function<void(frmProtocolVars&)> script) {
        onDialog(std::move(script));
        return headless([&] { return frmProtocolVars().Edit(std::move(field), methodType); });
    }
    // The dialog on the field, acted on by the person once it is up.
    VarPtr edit(VarPtr field, int32_t methodType, std::function<void(QWidget&)> actions) {
        test::onModal(QStringLiteral("frmProtocolVars"), [actions = std::move(actions)](QWidget& window) {
            QApplication::setActiveWindow(&window);
            actions(window);
        });
        return frmProtocolVars().Edit(std::move(field), methodType);
    }
};

TEST_F(QtFieldDialogTest, EveryControlHasAWidgetOfItsNameAndNoWidgetIsLeftOver) {
    frmProtocolVars dialog;
    std::unique_ptr<FormDialog> view = createFormView(dialog);
    ASSERT_NE(view, nullptr);
    FormBinding binding(dialog, *view);
    for (const std::wstring& name : binding.ControlsWithoutWidget()) ADD_FAILURE() << toQString(name).toStdString();
    EXPECT_TRUE(binding.ControlsWithoutWidget().empty());
    for (const QString& name : binding.WidgetsWithoutControl()) ADD_FAILURE() << name.toStdString();
    EXPECT_TRUE(binding.WidgetsWithoutControl().empty());
}

TEST_F(QtFieldDialogTest, ASendNumericFieldLinkedThroughThePickerEqualsTheOneMadeHeadless) {
    clsProtocolMessage message;
    message.MessageString(std::wstring(clsProtocolMessage::MaxPositions, L' '));
    QString shownLink;
    bool okBefore = true;
    test::onModal(QStringLiteral("frmProtocolVars"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        okBefore = child<QPushButton>(window, "cmdOk")->isEnabled();
        test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { test::pickWithKeys(picker, 3, 100); });
        click(window, "cmdLink");
        QApplication::setActiveWindow(&window);
        shownLink = child<QLabel>(window, "lblOpData")->text();
        pressDown(window, "cbLeading", 1);
        pressDown(window, "cbAfter", 2);
        click(window, "cmdOk");
    });
    EXPECT_TRUE(message.EditVar(3));

    clsProtocolMessage expected;
    expected.MessageString(std::wstring(clsProtocolMessage::MaxPositions, L' '));
    person.QueuePick(memoryChoice(3, 100));
    onDialog([](frmProtocolVars& dialog) {
        dialog.cmdLink.UserClick();
        dialog.SendNumeric.cbLeading.UserSelect(dialog.SendNumeric.cbLeading.ListIndex() + 1);
        dialog.SendNumeric.cbAfter.UserSelect(dialog.SendNumeric.cbAfter.ListIndex() + 2);
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(headless([&] { return expected.EditVar(3); }));

    EXPECT_FALSE(okBefore);
    ASSERT_EQ(message.NumberOfVars(), 1);
    ASSERT_EQ(expected.NumberOfVars(), 1);
    auto field = std::dynamic_pointer_cast<clsProtocolNumericVar>(message.GetVar(1));
    auto wanted = std::dynamic_pointer_cast<clsProtocolNumericVar>(expected.GetVar(1));
    ASSERT_TRUE(field && wanted);
    EXPECT_EQ(shownLink, toQString(GetOperandDisplayText(*field->LikedOperand())));
    EXPECT_EQ(field->LikedOperand()->OperandType(), 3);
    EXPECT_EQ(field->LikedOperand()->OperandAddress(), 100);
    EXPECT_EQ(field->LeadingZeros(), wanted->LeadingZeros());
    EXPECT_EQ(field->AfterPoint(), wanted->AfterPoint());
    EXPECT_EQ(field->BeforePoint(), wanted->BeforePoint());
    EXPECT_EQ(field->Length(), wanted->Length());
    EXPECT_EQ(message.MessageString(), expected.MessageString());
}

TEST_F(QtFieldDialogTest, AScanStreamFieldSetWithKeysAndMouseEqualsTheOneSetHeadless) {
    auto field = fieldAt<clsProtocolScanNumericVar>(4);
    linkOperand(*field->LikedOperand(), 3, 20);
    bool fixedShown = false, nullShown = true;
    VarPtr result = edit(field, method_type::Scan, [&](QWidget& window) {
        clickTab(window, 6);
        pressDown(window, "cbScanStream", 4);
        pressDown(window, "cbScanCopyBytes", 1);
        tick(window, "ckSteamFixLen");
        fixedShown = child<QCheckBox>(window, "ckSteamFixLen")->isChecked();
        nullShown = child<QCheckBox>(window, "ckAddNullToStream")->isChecked();
        click(window, "cmdOk");
    });

    auto expected = fieldAt<clsProtocolScanNumericVar>(4);
    linkOperand(*expected->LikedOperand(), 3, 20);
    VarPtr wanted = editHeadless(expected, method_type::Scan, [](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(6);
        dialog.ScanNumeric.cbScanStream.UserSelect(dialog.ScanNumeric.cbScanStream.ListIndex() + 4);
        dialog.ScanNumeric.cbScanCopyBytes.UserSelect(dialog.ScanNumeric.cbScanCopyBytes.ListIndex() + 1);
        dialog.ScanNumeric.ckSteamFixLen.UserClick();
        dialog.cmdOk.UserClick();
    });

    EXPECT_EQ(result, field);
    EXPECT_FALSE(result->IsCanceled());
    EXPECT_FALSE(wanted->IsCanceled());
    EXPECT_TRUE(fixedShown);
    EXPECT_FALSE(nullShown);
    EXPECT_EQ(field->StreamForm(), 1);
    EXPECT_EQ(field->VarFormat(), 3);
    EXPECT_EQ(field->StreamVectorLength(), 5);
    EXPECT_EQ(field->StreamForm(), expected->StreamForm());
    EXPECT_EQ(field->VarFormat(), expected->VarFormat());
    EXPECT_EQ(field->StreamVectorLength(), expected->StreamVectorLength());
    EXPECT_EQ(field->CopyBytesFormat(), expected->CopyBytesFormat());
    EXPECT_EQ(field->AddNullToEndOfStream(), expected->AddNullToEndOfStream());
    EXPECT_EQ(field->Length(), expected->Length());
}

TEST_F(QtFieldDialogTest, TextsTypedIntoTheGridEqualTheOnesTypedHeadless) {
    auto field = fieldAt<clsProtocolistTextVar>(0);
    linkOperand(*field->LikedOperand(), 3, 8);
    QStringList shown;
    VarPtr result = edit(field, method_type::Send, [&](QWidget& window) {
        auto* grid = child<QTableView>(window, "flgListTexts");
        // The click lands on whatever is on top of the cell: the open editor, if any.
        const QPoint cell = cellCentre(*grid, 1, 1);
        QWidget* onTop = grid->viewport()->childAt(cell);
        QTest::mouseClick(onTop ? onTop : grid->viewport(), Qt::LeftButton, {},
                          onTop ? onTop->mapFrom(grid->viewport(), cell) : cell);
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Idle"));
        click(window, "cmndNewVLT");
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Busy"));
        click(window, "cmndNewVLT");
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Fault"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        for (int row = 0; row < grid->model()->rowCount(); ++row)
            shown << grid->model()->index(row, 0).data().toString() + QLatin1Char('|') +
                         grid->model()->index(row, 1).data().toString();
        click(window, "cmdOk");
    });

    auto expected = fieldAt<clsProtocolistTextVar>(0);
    linkOperand(*expected->LikedOperand(), 3, 8);
    editHeadless(expected, method_type::Send, [](frmProtocolVars& dialog) {
        dialog.flgListTexts.UserClick(1, 1);
        dialog.flgListTexts.UserType(L"Idle");
        dialog.cmndNewVLT.UserClick();
        dialog.flgListTexts.UserType(L"Busy");
        dialog.cmndNewVLT.UserClick();
        dialog.flgListTexts.UserType(L"Fault");
        dialog.flgListTexts.UserEndEdit();
        dialog.cmdOk.UserClick();
    });

    EXPECT_FALSE(result->IsCanceled());
    EXPECT_EQ(field->Texts(), (std::vector<std::wstring>{L"Idle", L"Busy", L"Fault"}));
    EXPECT_EQ(field->Texts(), expected->Texts());
    EXPECT_EQ(field->DefaultDisplay(), expected->DefaultDisplay());
    EXPECT_EQ(shown, (QStringList{QStringLiteral("0|Idle"), QStringLiteral("1|Busy"), QStringLiteral("2|Fault")}));
}

TEST_F(QtFieldDialogTest, AChecksumWithALimitPickedInTheSelectorEqualsTheOneMadeHeadless) {
    int32_t sendMethod = method_type::Send;
    context->ExtendedOperands = true;
    bool rowsEnabledBefore = true, linkRowShown = true;
    QString fromShown;
    VarPtr result = edit(fieldAt<clsProtocolNumericVar>(2), method_type::Send, [&](QWidget& window) {
        clickTab(window, 7);
        linkRowShown = child<QWidget>(window, "cmdLink")->isVisible();
        pressDown(window, "cbCSCalcType", 2);
        pressDown(window, "cbCSLength", 1);
        rowsEnabledBefore = child<QPushButton>(window, "cmdCSSAFromVal")->isEnabled();
        tick(window, "ckSpecialAddition");
        test::onModal(QStringLiteral("frmProtocolHexSelector"), [](QWidget& selector) {
            QApplication::setActiveWindow(&selector);
            auto* grid = child<QTableView>(selector, "flgLowChars");
            const QModelIndex code = grid->model()->index(2, 0);
            grid->scrollTo(code);
            QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(code).center());
            click(selector, "cmdOk");
        });
        click(window, "cmdCSSAFromVal");
        QApplication::setActiveWindow(&window);
        fromShown = child<QLabel>(window, "lbtxtCSSAFromVal")->text();
        click(window, "cmdOk");
    });

    onDialog([](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(7);
        dialog.Checksum.cbCSCalcType.UserSelect(dialog.Checksum.cbCSCalcType.ListIndex() + 2);
        dialog.Checksum.cbCSLength.UserSelect(dialog.Checksum.cbCSLength.ListIndex() + 1);
        dialog.Checksum.ckSpecialAddition.UserClick();
        dialog.Checksum.cmdCSSAFromVal.UserClick();
        dialog.cmdOk.UserClick();
    });
    person.QueueDialog(scriptFor<frmProtocolHexSelector>([](frmProtocolHexSelector& selector) {
        selector.flgLowChars.UserClick(3, 0);
        selector.cmdOk.UserClick();
    }));
    VarPtr expected = headless([&] { return frmProtocolVars().Edit(fieldAt<clsProtocolNumericVar>(2), sendMethod); });

    auto checksum = std::dynamic_pointer_cast<clsProtocolCSVar>(result);
    auto wanted = std::dynamic_pointer_cast<clsProtocolCSVar>(expected);
    ASSERT_TRUE(checksum && wanted);
    EXPECT_FALSE(checksum->IsCanceled());
    EXPECT_FALSE(linkRowShown);
    EXPECT_FALSE(rowsEnabledBefore);
    EXPECT_EQ(fromShown, QStringLiteral("2"));
    EXPECT_TRUE(checksum->SpecialAddition());
    EXPECT_EQ(checksum->SA_FromValue(), 2);
    EXPECT_EQ(checksum->StartPosition(), 2);
    EXPECT_EQ(checksum->CalculationType(), wanted->CalculationType());
    EXPECT_EQ(checksum->CSLength(), wanted->CSLength());
    EXPECT_EQ(checksum->SpecialAddition(), wanted->SpecialAddition());
    EXPECT_EQ(checksum->SA_FromValue(), wanted->SA_FromValue());
    EXPECT_EQ(checksum->SA_ToValue(), wanted->SA_ToValue());
    EXPECT_EQ(checksum->SA_AddedValue(), wanted->SA_AddedValue());
    EXPECT_EQ(checksum->Length(), wanted->Length());
}

TEST_F(QtFieldDialogTest, CancelWithTheMouseReturnsIsCanceledAndTheMessageKeepsItsField) {
    clsProtocolMessage message;
    message.MessageString(std::wstring(clsProtocolMessage::MaxPositions, L' '));
    onDialog([](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(1);
        dialog.txtText0.UserType(L"Off");
        dialog.txtText1.UserType(L"On");
        dialog.cmdLink.UserClick();
        dialog.cmdOk.UserClick();
    });
    person.QueuePick(memoryChoice(3, 5));
    ASSERT_TRUE(headless([&] { return message.EditVar(1); }));
    const VarPtr before = message.GetVar(1);
    const std::wstring text = message.MessageString();

    bool typed = false;
    test::onModal(QStringLiteral("frmProtocolVars"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* box = child<QLineEdit>(window, "txtText0");
        box->setFocus(Qt::TabFocusReason);
        // The field dialog selects nothing on focus: the person selects the text to replace it.
        QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(box, QStringLiteral("Stopped"));
        typed = box->text() == QStringLiteral("Stopped");
        click(window, "cmdCancel");
    });
    // A canceled edit is still an edit handled: the message answers true and keeps its field.
    EXPECT_TRUE(message.EditVar(1));
    EXPECT_TRUE(typed);
    EXPECT_EQ(message.GetVar(1), before);
    EXPECT_EQ(std::dynamic_pointer_cast<clsProtocolBinaryVar>(before)->TextFor0(), L"Off");
    EXPECT_EQ(message.MessageString(), text);

    auto field = fieldAt<clsProtocolBinaryVar>(0);
    VarPtr result = edit(field, method_type::Send, [](QWidget& window) { click(window, "cmdCancel"); });
    EXPECT_TRUE(result->IsCanceled());
    VarPtr wanted = editHeadless(fieldAt<clsProtocolBinaryVar>(0), method_type::Send,
                                 [](frmProtocolVars& dialog) { dialog.cmdCancel.UserClick(); });
    EXPECT_EQ(result->IsCanceled(), wanted->IsCanceled());
}

// Each tab at the height its panel asks for: screenshot, the window's height,
// no clipped text.
struct TabShot {
    int Tab;
    QString File;
    int Height;
    std::vector<QString> Clipped;
    int MinimumHeight;
};

void shootTabs(QWidget& window, const std::vector<int>& tabs, const QString& prefix, std::vector<TabShot>& shots) {
    for (int tab : tabs) {
        clickTab(window, tab);
        QApplication::processEvents();
        const QString file = prefix + QString::number(tab) + QStringLiteral(".png");
        test::saveScreenshot(window, file);
        shots.push_back({tab, file, window.height(), clippedTexts(window), window.minimumSizeHint().height()});
    }
}

TEST_F(QtFieldDialogTest, EverySendTabShowsItsPanelWithNoTextClipped) {
    std::vector<TabShot> shots;
    std::vector<int> heights;
    // A list with texts, so that its tab shows some.
    auto field = fieldAt<clsProtocolistTextVar>(0);
    field->Texts({L"Stopped", L"Running", L"Fault"});
    field->AlignmentStringSize(7);
    linkOperand(*field->LikedOperand(), 3, 8);
    edit(field, method_type::Send, [&](QWidget& window) {
        shootTabs(window, {1, 2, 3, 4, 7, 8, 9}, QStringLiteral("field_dialog_send_"), shots);
        for (const TabShot& shot : shots) heights.push_back(shot.Height);
        // Hex shows its own rows, in a smaller window.
        clickTab(window, 2);
        pressDown(window, "cbVarFormat", 1);
        QApplication::processEvents();
        test::saveScreenshot(window, QStringLiteral("field_dialog_send_2_hex.png"));
        shots.push_back({2, QStringLiteral("field_dialog_send_2_hex.png"), window.height(), clippedTexts(window),
                         window.minimumSizeHint().height()});
        heights.push_back(window.height());
        click(window, "cmdCancel");
    });
    ASSERT_EQ(shots.size(), 8u);
    for (const TabShot& shot : shots) {
        for (const QString& name : shot.Clipped) ADD_FAILURE() << shot.File.toStdString() << ": " << name.toStdString();
        EXPECT_GE(shot.Height, shot.MinimumHeight) << shot.File.toStdString();
    }
    // The heights the panels ask for, in pixels.
    EXPECT_EQ(heights, (std::vector<int>{2940 / 15, 4650 / 15, 4050 / 15, 4125 / 15, 6460 / 15, 2940 / 15, 2940 / 15,
                                         3300 / 15}));
}

TEST_F(QtFieldDialogTest, EveryScanTabShowsItsPanelWithNoTextClipped) {
    std::vector<TabShot> shots;
    TabShot hexShot;
    edit(fieldAt<clsProtocolScanNumericVar>(0), method_type::Scan, [&](QWidget& window) {
        shootTabs(window, {5, 6, 7}, QStringLiteral("field_dialog_scan_"), shots);
        // The hex format shows its own rows.
        clickTab(window, 5);
        pressDown(window, "cbScanVarFormat", 2);
        QApplication::processEvents();
        test::saveScreenshot(window, QStringLiteral("field_dialog_scan_5_hex.png"));
        hexShot = {5, QStringLiteral("field_dialog_scan_5_hex.png"), window.height(), clippedTexts(window),
                   window.minimumSizeHint().height()};
        click(window, "cmdCancel");
    });
    ASSERT_EQ(shots.size(), 3u);
    for (const TabShot& shot : shots)
        for (const QString& name : shot.Clipped) ADD_FAILURE() << shot.File.toStdString() << ": " << name.toStdString();
    EXPECT_EQ(shots[0].Height, 4950 / 15);
    EXPECT_EQ(shots[1].Height, 3550 / 15);
    EXPECT_EQ(shots[2].Height, 6460 / 15);
    EXPECT_TRUE(hexShot.Clipped.empty());
    EXPECT_EQ(hexShot.Height, 4300 / 15);
}

TEST_F(QtFieldDialogTest, EnterInATextBoxAcceptsAsOkDoesAndEscapeCancels) {
    // OK needs a link and a text.
    auto linked = [] {
        auto field = fieldAt<clsProtocolBinaryVar>(0);
        linkOperand(*field->LikedOperand(), 3, 5);
        field->TextFor1(L"On");
        return field;
    };
    VarPtr accepted = edit(linked(), method_type::Send, [](QWidget& window) {
        auto* box = child<QLineEdit>(window, "txtText0");
        box->setFocus(Qt::TabFocusReason);
        QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(box, QStringLiteral("Idle"));
        QTest::keyClick(box, Qt::Key_Return);
        test::endIfStillShown(window);
    });
    VarPtr clicked = edit(linked(), method_type::Send, [](QWidget& window) {
        auto* box = child<QLineEdit>(window, "txtText0");
        box->setFocus(Qt::TabFocusReason);
        QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(box, QStringLiteral("Idle"));
        click(window, "cmdOk");
    });
    VarPtr escaped = edit(linked(), method_type::Send, [](QWidget& window) {
        auto* box = child<QLineEdit>(window, "txtText0");
        box->setFocus(Qt::TabFocusReason);
        QTest::keyClicks(box, QStringLiteral("Idle"));
        QTest::keyClick(box, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    ASSERT_TRUE(accepted && clicked && escaped);
    EXPECT_EQ(accepted->IsCanceled(), clicked->IsCanceled());
    EXPECT_FALSE(accepted->IsCanceled());
    auto* binary = dynamic_cast<clsProtocolBinaryVar*>(accepted.get());
    ASSERT_NE(binary, nullptr);
    EXPECT_EQ(binary->TextFor0(), L"Idle");
    EXPECT_TRUE(escaped->IsCanceled());
}
}  // namespace
}  // namespace qx
