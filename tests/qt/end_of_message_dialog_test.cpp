// The control-character selector and the end-of-message dialog on screen,
// driven by real key and mouse events through the Qt modal driver, against
// the same edits made headless.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QTest>

#include "field_editors/field_editors.h"
#include "field_editors/frm_protocol_config_advanced.h"
#include "field_editors/frm_protocol_hex_selector.h"
#include "message/editor_hooks.h"
#include "message/protocol_cs_var.h"
#include "platform/host/host_context.h"
#include "qt/form_binding.h"
#include "qt/form_views.h"
#include "qt/qt_modal_driver.h"
#include "qt/qt_text.h"
#include "qt_test_support.h"
#include "sets/send_set.h"

namespace qx {
namespace {

// The centre of the row of a code in the selector, scrolled into view first.
QPoint rowOfCode(QTableView& view, int code, int col = 0) {
    const QModelIndex index = view.model()->index(code, col);
    view.scrollTo(index);
    return view.visualRect(index).center();
}

void clickCode(QWidget& selector, int code) {
    auto* grid = selector.findChild<QTableView*>(QStringLiteral("flgLowChars"));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, rowOfCode(*grid, code));
}

template <class W>
W* child(QWidget& window, const char* name) {
    W* widget = window.findChild<W*>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

CSVarPtr checksumOf(const VarPtr& var) { return std::dynamic_pointer_cast<clsProtocolCSVar>(var); }

class QtEndOfMessageTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    ScopedEditorHooks hooks;
    std::shared_ptr<ModalDriver> scripted = context->Driver;

    void SetUp() override {
        context->Driver = std::make_shared<QtModalDriver>();
        context->ExtendedOperands = true;
        installFieldEditors();
    }
};

TEST_F(QtEndOfMessageTest, EveryControlOfBothDialogsHasAWidgetOfItsNameAndNoWidgetIsLeftOver) {
    frmProtocolHexSelector selector;
    frmProtocolConfigAdvanced advanced;
    for (Form* form : {static_cast<Form*>(&selector), static_cast<Form*>(&advanced)}) {
        std::unique_ptr<FormDialog> view = createFormView(*form);
        ASSERT_NE(view, nullptr);
        FormBinding binding(*form, *view);
        for (const std::wstring& name : binding.ControlsWithoutWidget()) ADD_FAILURE() << toQString(name).toStdString();
        EXPECT_TRUE(binding.ControlsWithoutWidget().empty());
        for (const QString& name : binding.WidgetsWithoutControl()) ADD_FAILURE() << name.toStdString();
        EXPECT_TRUE(binding.WidgetsWithoutControl().empty());
    }
}

TEST_F(QtEndOfMessageTest, TheSelectorGivesTheCodeOfTheRowClickedWithTheMouse) {
    QStringList header;
    QList<int> widths;
    QString title;
    bool rows = false;
    test::onModal(QStringLiteral("frmProtocolHexSelector"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = child<QTableView>(window, "flgLowChars");
        title = window.windowTitle();
        rows = grid->selectionBehavior() == QAbstractItemView::SelectRows;
        for (int c = 0; c < 3; ++c) {
            header << grid->model()->headerData(c, Qt::Horizontal).toString();
            widths << grid->columnWidth(c);
        }
        clickCode(window, 13);
        QTest::mouseClick(child<QPushButton>(window, "cmdOk"), Qt::LeftButton);
    });
    uint8_t value = 0;
    EXPECT_TRUE(frmProtocolHexSelector().Edit(value, 0));
    EXPECT_EQ(value, 13);
    EXPECT_EQ(title, QStringLiteral("Control Characters"));
    EXPECT_TRUE(rows);
    EXPECT_EQ(header, (QStringList{QStringLiteral("Dec"), QStringLiteral("Hex"), QStringLiteral("Description")}));
    ASSERT_EQ(widths.size(), 3);
    EXPECT_EQ(widths[0], 53);
    EXPECT_EQ(widths[1], 53);
    // The last column takes what the view has left, never less than its own width.
    EXPECT_GE(widths[2], 60);
}

TEST_F(QtEndOfMessageTest, ArrowKeysInTheSelectorAndOkGiveCodeZero) {
    QString current;
    test::onModal(QStringLiteral("frmProtocolHexSelector"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = child<QTableView>(window, "flgLowChars");
        grid->setFocus(Qt::TabFocusReason);
        for (int i = 0; i < 3; ++i) QTest::keyClick(grid, Qt::Key_Down);
        current = grid->currentIndex().siblingAtColumn(2).data().toString();
        QTest::mouseClick(child<QPushButton>(window, "cmdOk"), Qt::LeftButton);
    });
    uint8_t value = 0xEE;
    EXPECT_TRUE(frmProtocolHexSelector().Edit(value, 0));
    EXPECT_EQ(current, QStringLiteral("(ETX)"));
    EXPECT_EQ(value, 0);
}

TEST_F(QtEndOfMessageTest, ADoubleClickInTheSelectorAcceptsItsRow) {
    qsizetype selectedCells = 0;
    test::onModal(QStringLiteral("frmProtocolHexSelector"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = child<QTableView>(window, "flgLowChars");
        const QPoint at = rowOfCode(*grid, 7, 2);
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, at);
        selectedCells = grid->selectionModel()->selectedIndexes().size();
        test::saveScreenshot(window, QStringLiteral("hex_selector.png"));
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, at);
    });
    uint8_t value = 0;
    EXPECT_TRUE(frmProtocolHexSelector().Edit(value, 0));
    EXPECT_EQ(value, 7);
    // The clicked row shows as one.
    EXPECT_EQ(selectedCells, 3);
}

TEST_F(QtEndOfMessageTest, EscapeInTheSelectorCancelsAndStillWritesTheClickedCode) {
    test::onModal(QStringLiteral("frmProtocolHexSelector"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        clickCode(window, 4);
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    uint8_t value = 0;
    EXPECT_FALSE(frmProtocolHexSelector().Edit(value, 0));
    EXPECT_EQ(value, 4);
}

TEST_F(QtEndOfMessageTest, AChecksumSetWithKeysAndMouseEqualsTheOneSetHeadless) {
    clsProtocolSendSrv set;
    bool panelEnabledBefore = true, rowsEnabledBefore = true, panelEnabledAfter = false;
    QString fromShown, toShown;
    test::onModal(QStringLiteral("frmProtocolConfigAdvanced"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        panelEnabledBefore = child<QGroupBox>(window, "fCSConfig")->isEnabled();
        auto* endOfMsg = child<QComboBox>(window, "cbEndOfMsg");
        endOfMsg->setFocus(Qt::TabFocusReason);
        QTest::keyClick(endOfMsg, Qt::Key_Down);
        panelEnabledAfter = child<QGroupBox>(window, "fCSConfig")->isEnabled();

        auto* calcType = child<QComboBox>(window, "cbCSCalcType");
        calcType->setFocus(Qt::TabFocusReason);
        for (int i = 0; i < 3; ++i) QTest::keyClick(calcType, Qt::Key_Down);
        auto* length = child<QComboBox>(window, "cbCSLength");
        length->setFocus(Qt::TabFocusReason);
        QTest::keyClick(length, Qt::Key_Down);
        auto* stx = child<QCheckBox>(window, "chkSTXInCS");
        stx->setFocus(Qt::TabFocusReason);
        QTest::keyClick(stx, Qt::Key_Space);

        rowsEnabledBefore = child<QPushButton>(window, "cmdCSSAFromVal")->isEnabled();
        auto* limits = child<QCheckBox>(window, "ckSpecialAddition");
        QTest::mouseClick(limits, Qt::LeftButton, {}, QPoint(8, limits->height() / 2));

        test::onModal(QStringLiteral("frmProtocolHexSelector"), [](QWidget& selector) {
            QApplication::setActiveWindow(&selector);
            clickCode(selector, 2);
            QTest::mouseClick(child<QPushButton>(selector, "cmdOk"), Qt::LeftButton);
        });
        QTest::mouseClick(child<QPushButton>(window, "cmdCSSAFromVal"), Qt::LeftButton);
        QApplication::setActiveWindow(&window);

        // A click on the value acts as its button.
        test::onModal(QStringLiteral("frmProtocolHexSelector"), [](QWidget& selector) {
            QApplication::setActiveWindow(&selector);
            auto* grid = child<QTableView>(selector, "flgLowChars");
            const QPoint at = rowOfCode(*grid, 3);
            QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, at);
            QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, at);
        });
        QTest::mouseClick(child<QLabel>(window, "lbtxtCSSAToVal"), Qt::LeftButton);
        QApplication::setActiveWindow(&window);

        fromShown = child<QLabel>(window, "lbtxtCSSAFromVal")->text();
        toShown = child<QLabel>(window, "lbtxtCSSAToVal")->text();
        test::saveScreenshot(window, QStringLiteral("end_of_message_dialog.png"));
        QTest::mouseClick(child<QPushButton>(window, "cmdOk"), Qt::LeftButton);
    });
    set.EditSendETXAdvanced();

    EXPECT_FALSE(panelEnabledBefore);
    EXPECT_TRUE(panelEnabledAfter);
    EXPECT_FALSE(rowsEnabledBefore);
    EXPECT_EQ(fromShown, QStringLiteral("2"));
    EXPECT_EQ(toShown, QStringLiteral("3"));

    context->Driver = scripted;
    clsProtocolSendSrv headless;
    context->Script()->QueueDialog(scriptFor<frmProtocolConfigAdvanced>([](frmProtocolConfigAdvanced& dialog) {
        dialog.cbEndOfMsg.UserSelect(1);
        dialog.Panel.cbCSCalcType.UserSelect(3);
        dialog.Panel.cbCSLength.UserSelect(1);
        dialog.Panel.chkSTXInCS.UserClick();
        dialog.Panel.ckSpecialAddition.UserClick();
        dialog.Panel.cmdCSSAFromVal.UserClick();
        dialog.Panel.lbtxtCSSAToVal.UserClick();
        dialog.cmdOk.UserClick();
    }));
    context->Script()->QueueDialog(scriptFor<frmProtocolHexSelector>([](frmProtocolHexSelector& selector) {
        selector.flgLowChars.UserClick(3, 0);
        selector.cmdOk.UserClick();
    }));
    context->Script()->QueueDialog(scriptFor<frmProtocolHexSelector>([](frmProtocolHexSelector& selector) {
        selector.flgLowChars.UserClick(4, 0);
        selector.flgLowChars.UserDoubleClick(4, 0);
    }));
    headless.EditSendETXAdvanced();

    CSVarPtr onScreen = checksumOf(set.SendChecksum()), expected = checksumOf(headless.SendChecksum());
    ASSERT_TRUE(onScreen && expected);
    EXPECT_EQ(set.EndOfSendMessageType(), 2);
    EXPECT_EQ(set.EndOfSendMessageType(), headless.EndOfSendMessageType());
    EXPECT_EQ(onScreen->GetVarBinData(0), expected->GetVarBinData(0));
    EXPECT_EQ(onScreen->CalculationType(), 3);
    EXPECT_EQ(onScreen->CSLength(), 2);
    EXPECT_TRUE(onScreen->STXInCS());
    EXPECT_TRUE(onScreen->SpecialAddition());
    EXPECT_EQ(onScreen->SA_FromValue(), 2);
    EXPECT_EQ(onScreen->SA_ToValue(), 3);
    EXPECT_EQ(onScreen->SA_FromValue(), expected->SA_FromValue());
    EXPECT_EQ(onScreen->SA_ToValue(), expected->SA_ToValue());
    EXPECT_EQ(onScreen->SA_AddedValue(), expected->SA_AddedValue());
    EXPECT_EQ(onScreen->STXInCS(), expected->STXInCS());
}

TEST_F(QtEndOfMessageTest, CancelWithTheMouseLeavesTheSetUntouched) {
    clsProtocolSendSrv set;
    set.EndOfSendMessageType(3);
    VarPtr before = set.SendChecksum();
    test::onModal(QStringLiteral("frmProtocolConfigAdvanced"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* endOfMsg = child<QComboBox>(window, "cbEndOfMsg");
        endOfMsg->setFocus(Qt::TabFocusReason);
        QTest::keyClick(endOfMsg, Qt::Key_Up);
        auto* format = child<QComboBox>(window, "cbCSFormatView");
        format->setFocus(Qt::TabFocusReason);
        QTest::keyClick(format, Qt::Key_Down);
        QTest::mouseClick(child<QPushButton>(window, "cmdCancel"), Qt::LeftButton);
    });
    set.EditSendETXAdvanced();
    EXPECT_EQ(set.SendChecksum(), before);
    EXPECT_EQ(checksumOf(before)->FormatView(), 0);
    EXPECT_EQ(set.EndOfSendMessageType(), 3);
}

TEST_F(QtEndOfMessageTest, ChoosingETXWithKeysDisablesThePanelAndShowsTheDefaults) {
    clsProtocolSendSrv set;
    set.EndOfSendMessageType(2);
    checksumOf(set.SendChecksum())->CalculationType(7);
    QString calcTypeShown;
    int fromFwrItems = 0;
    bool panelEnabled = true;
    test::onModal(QStringLiteral("frmProtocolConfigAdvanced"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* endOfMsg = child<QComboBox>(window, "cbEndOfMsg");
        endOfMsg->setFocus(Qt::TabFocusReason);
        QTest::keyClick(endOfMsg, Qt::Key_Up);
        calcTypeShown = child<QComboBox>(window, "cbCSCalcType")->currentText();
        fromFwrItems = child<QComboBox>(window, "cbCSFromFwr")->count();
        panelEnabled = child<QGroupBox>(window, "fCSConfig")->isEnabled();
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    set.EditSendETXAdvanced();
    EXPECT_EQ(calcTypeShown, QStringLiteral("SUM-8"));
    EXPECT_EQ(fromFwrItems, 32);
    EXPECT_FALSE(panelEnabled);
    EXPECT_EQ(checksumOf(set.SendChecksum())->CalculationType(), 7);
    EXPECT_EQ(set.EndOfSendMessageType(), 2);
}

TEST_F(QtEndOfMessageTest, EnterInTheSelectorAcceptsTheClickedRowAsOkDoes) {
    test::onModal(QStringLiteral("frmProtocolHexSelector"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        clickCode(window, 10);
        QTest::keyClick(child<QTableView>(window, "flgLowChars"), Qt::Key_Return);
        test::endIfStillShown(window);
    });
    uint8_t value = 0;
    EXPECT_TRUE(frmProtocolHexSelector().Edit(value, 0));
    EXPECT_EQ(value, 10);
}

TEST_F(QtEndOfMessageTest, EscapeOnTheSelectorsGridCancels) {
    test::onModal(QStringLiteral("frmProtocolHexSelector"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* grid = child<QTableView>(window, "flgLowChars");
        grid->setFocus(Qt::TabFocusReason);
        QTest::keyClick(grid, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    uint8_t value = 9;
    EXPECT_FALSE(frmProtocolHexSelector().Edit(value, 0));
}

TEST_F(QtEndOfMessageTest, EnterOnAListAcceptsTheEndOfMessageAsOkDoes) {
    clsProtocolSendSrv set;
    set.EndOfSendMessageType(3);
    test::onModal(QStringLiteral("frmProtocolConfigAdvanced"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* endOfMsg = child<QComboBox>(window, "cbEndOfMsg");
        endOfMsg->setFocus(Qt::TabFocusReason);
        QTest::keyClick(endOfMsg, Qt::Key_Up);
        QTest::keyClick(endOfMsg, Qt::Key_Return);
        test::endIfStillShown(window);
    });
    set.EditSendETXAdvanced();
    EXPECT_EQ(set.EndOfSendMessageType(), 2);
}

TEST_F(QtEndOfMessageTest, EscapeOnAListCancelsAndLeavesTheSetUntouched) {
    clsProtocolSendSrv set;
    set.EndOfSendMessageType(3);
    test::onModal(QStringLiteral("frmProtocolConfigAdvanced"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* endOfMsg = child<QComboBox>(window, "cbEndOfMsg");
        endOfMsg->setFocus(Qt::TabFocusReason);
        QTest::keyClick(endOfMsg, Qt::Key_Up);
        QTest::keyClick(endOfMsg, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    set.EditSendETXAdvanced();
    EXPECT_EQ(set.EndOfSendMessageType(), 3);
}
}  // namespace
}  // namespace qx
