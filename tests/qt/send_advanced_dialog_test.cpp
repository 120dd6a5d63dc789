// The Send advanced dialog on screen, opened by EditAdvanced of a serial Send
// set and driven by real key and mouse events through the Qt modal driver,
// against the same edit made headless.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include "editors/send_advanced_bench.h"
#include "qt/form_binding.h"
#include "qt/form_views.h"
#include "qt/qt_modal_driver.h"
#include "qt/qt_text.h"
#include "qt_test_support.h"

namespace qx {
namespace {

using test::SendAdvancedBench;

QStringList itemsOf(const QComboBox& combo) {
    QStringList items;
    for (int i = 0; i < combo.count(); ++i) items << combo.itemText(i);
    return items;
}

// What the window showed at one moment.
struct OnScreen {
    bool Checked = false;
    bool LinksEnabled = false;
    QString BitText;
    QString DestinationText;
    QStringList Formats;
    QString Format;
    bool OkEnabled = false;
};

OnScreen lookAt(QWidget& window) {
    OnScreen seen;
    seen.Checked = window.findChild<QCheckBox*>(QStringLiteral("ckCopyBytes"))->isChecked();
    seen.LinksEnabled = window.findChild<QPushButton*>(QStringLiteral("cmdOPCopyBytesBit"))->isEnabled() &&
                        window.findChild<QPushButton*>(QStringLiteral("cmdOpCopyBytesTo"))->isEnabled() &&
                        window.findChild<QComboBox*>(QStringLiteral("cbCopyBytes"))->isEnabled();
    seen.BitText = window.findChild<QLabel*>(QStringLiteral("lbOPCopyBytesBit"))->text();
    seen.DestinationText = window.findChild<QLabel*>(QStringLiteral("lbOpCopyBytesTo"))->text();
    auto* formats = window.findChild<QComboBox*>(QStringLiteral("cbCopyBytes"));
    seen.Formats = itemsOf(*formats);
    seen.Format = formats->currentText();
    seen.OkEnabled = window.findChild<QPushButton*>(QStringLiteral("cmdOK"))->isEnabled();
    return seen;
}

// A check box is clicked on its indicator.
void tick(QWidget& window) {
    auto* box = window.findChild<QCheckBox*>(QStringLiteral("ckCopyBytes"));
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
}

class QtSendAdvancedDialogTest : public ::testing::Test {
protected:
    SendAdvancedBench bench;
    // The scripted driver the bench holds by reference stays alive.
    std::shared_ptr<ModalDriver> scripted = bench.context->Driver;

    void SetUp() override { bench.context->Driver = std::make_shared<QtModalDriver>(); }
};

TEST_F(QtSendAdvancedDialogTest, EveryControlOfTheDialogHasAWidgetOfItsNameAndNoWidgetIsLeftOver) {
    frmProtocolSendAdvanced dialog;
    std::unique_ptr<FormDialog> view = createFormView(dialog);
    ASSERT_NE(view, nullptr);
    FormBinding binding(dialog, *view);
    for (const std::wstring& name : binding.ControlsWithoutWidget()) ADD_FAILURE() << toQString(name).toStdString();
    for (const QString& name : binding.WidgetsWithoutControl()) ADD_FAILURE() << name.toStdString();
    EXPECT_EQ(view->windowTitle(), QStringLiteral("Advanced..."));
    EXPECT_EQ(view->findChild<QCheckBox*>(QStringLiteral("ckCopyBytes"))->text(),
              QStringLiteral("Send Data Destination"));
    EXPECT_EQ(view->findChild<QLabel*>(QStringLiteral("lbCopyBit"))->text(), QStringLiteral("Copy  Bytes when ON :"));
    EXPECT_EQ(view->findChild<QLabel*>(QStringLiteral("lbCopyDestination"))->text(), QStringLiteral("Copy  to :"));
    EXPECT_EQ(view->findChild<QPushButton*>(QStringLiteral("cmdOPCopyBytesBit"))->toolTip(),
              QStringLiteral("Link Operand to Variable"));
    EXPECT_EQ(view->findChild<QPushButton*>(QStringLiteral("cmdOpCopyBytesTo"))->toolTip(),
              QStringLiteral("Link Operand to Variable"));
}

TEST_F(QtSendAdvancedDialogTest, ADoubleClickedNewWordDestinationTurnsACountOf4Into1AsTheHeadlessEditDoes) {
    bench.storedCopy(4, 5, 300);
    OnScreen opened, linked;
    test::onModal(QStringLiteral("frmProtocolSendAdvanced"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        opened = lookAt(window);
        test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { test::pickWithKeys(picker, 3, 40); });
        QTest::mouseDClick(window.findChild<QLabel*>(QStringLiteral("lbOpCopyBytesTo")), Qt::LeftButton);
        linked = lookAt(window);
        test::saveScreenshot(window, QStringLiteral("send_advanced_dialog.png"));
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    bench.set->EditAdvanced();

    EXPECT_TRUE(opened.Checked);
    EXPECT_TRUE(opened.LinksEnabled);
    EXPECT_EQ(opened.BitText, QStringLiteral("MB 12 : Done"));
    EXPECT_EQ(opened.DestinationText, QStringLiteral("ML 300 : Target"));
    EXPECT_EQ(opened.Formats.size(), 3);
    EXPECT_EQ(opened.Format, QStringLiteral("Convert ONE Linked Element to 4 Send Bytes"));
    EXPECT_TRUE(opened.OkEnabled);
    EXPECT_EQ(linked.Formats, (QStringList{QStringLiteral("Convert ONE Linked Element to 1 Send Bytes"),
                                           QStringLiteral("Convert ONE Linked Element to 2 Send Bytes")}));
    EXPECT_EQ(linked.Format, QStringLiteral("Convert ONE Linked Element to 1 Send Bytes"));
    EXPECT_TRUE(linked.DestinationText.startsWith(QStringLiteral("MI 40")));
    EXPECT_TRUE(linked.OkEnabled);

    SendAdvancedBench headless;
    headless.storedCopy(4, 5, 300);
    headless.edit([&](frmProtocolSendAdvanced& dialog) {
        headless.driver.QueuePick(test::memoryChoice(3, 40));
        dialog.lbOpCopyBytesTo.UserDoubleClick();
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(bench.set->CopyBytesCount(), 1);
    EXPECT_EQ(bench.set->CopyBytesCount(), headless.set->CopyBytesCount());
    EXPECT_EQ(bench.destination().OperandType(), headless.destination().OperandType());
    EXPECT_EQ(bench.destination().OperandAddress(), headless.destination().OperandAddress());
}

TEST_F(QtSendAdvancedDialogTest, ACopySetUpWithKeysAndMouseFromNothingReachesTheSet) {
    OnScreen opened, done;
    test::onModal(QStringLiteral("frmProtocolSendAdvanced"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        opened = lookAt(window);
        auto* check = window.findChild<QCheckBox*>(QStringLiteral("ckCopyBytes"));
        check->setFocus(Qt::TabFocusReason);
        QTest::keyClick(check, Qt::Key_Space);
        test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { test::pickWithKeys(picker, 16, 8); });
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOpCopyBytesTo")), Qt::LeftButton);
        test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { test::pickWithKeys(picker, 1, 77); });
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOPCopyBytesBit")), Qt::LeftButton);
        // The first item shows, but the count is still 0 until the list changes.
        EXPECT_FALSE(window.findChild<QPushButton*>(QStringLiteral("cmdOK"))->isEnabled());
        auto* formats = window.findChild<QComboBox*>(QStringLiteral("cbCopyBytes"));
        formats->setFocus(Qt::TabFocusReason);
        QTest::keyClick(formats, Qt::Key_Down);
        done = lookAt(window);
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    bench.set->EditAdvanced();

    EXPECT_FALSE(opened.Checked);
    EXPECT_FALSE(opened.LinksEnabled);
    EXPECT_FALSE(opened.OkEnabled);
    EXPECT_TRUE(done.Checked);
    EXPECT_TRUE(done.LinksEnabled);
    EXPECT_TRUE(done.BitText.startsWith(QStringLiteral("MB 77")));
    EXPECT_TRUE(done.DestinationText.startsWith(QStringLiteral("DW 8")));
    EXPECT_EQ(done.Format, QStringLiteral("Convert ONE Linked Element to 2 Send Bytes"));
    EXPECT_TRUE(done.OkEnabled);
    EXPECT_EQ(bench.set->CopyBytesCount(), 2);
    EXPECT_EQ(bench.destination().OperandType(), 16);
    EXPECT_EQ(bench.whenOn().OperandAddress(), 77);
}

TEST_F(QtSendAdvancedDialogTest, UncheckingWithTheMouseClearsTheTextsAndEscapeThenKeepsTheCount) {
    bench.storedCopy(2, 5, 300);
    OnScreen unchecked;
    test::onModal(QStringLiteral("frmProtocolSendAdvanced"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        tick(window);
        unchecked = lookAt(window);
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    bench.set->EditAdvanced();
    EXPECT_FALSE(unchecked.Checked);
    EXPECT_FALSE(unchecked.LinksEnabled);
    EXPECT_EQ(unchecked.BitText, QString());
    EXPECT_EQ(unchecked.DestinationText, QString());
    EXPECT_EQ(unchecked.Format, QString());
    EXPECT_TRUE(unchecked.OkEnabled);
    EXPECT_EQ(bench.set->CopyBytesCount(), 2);
    EXPECT_FALSE(bench.destination().IsNew());
}

TEST_F(QtSendAdvancedDialogTest, UncheckingWithTheMouseAndOkTurnsTheCopyOff) {
    bench.storedCopy(2, 5, 300);
    test::onModal(QStringLiteral("frmProtocolSendAdvanced"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        tick(window);
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    bench.set->EditAdvanced();
    EXPECT_EQ(bench.set->CopyBytesCount(), 0);
}

TEST_F(QtSendAdvancedDialogTest, EnterOnTheCheckBoxAcceptsAsOkDoes) {
    bench.storedCopy(2, 5, 300);
    test::onModal(QStringLiteral("frmProtocolSendAdvanced"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        tick(window);
        QTest::keyClick(window.findChild<QCheckBox*>(QStringLiteral("ckCopyBytes")), Qt::Key_Return);
        test::endIfStillShown(window);
    });
    bench.set->EditAdvanced();
    EXPECT_EQ(bench.set->CopyBytesCount(), 0);
}

TEST_F(QtSendAdvancedDialogTest, EscapeOnTheCheckBoxCancelsAndKeepsTheCount) {
    bench.storedCopy(2, 5, 300);
    test::onModal(QStringLiteral("frmProtocolSendAdvanced"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        tick(window);
        QTest::keyClick(window.findChild<QCheckBox*>(QStringLiteral("ckCopyBytes")), Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    bench.set->EditAdvanced();
    EXPECT_EQ(bench.set->CopyBytesCount(), 2);
}
}  // namespace
}  // namespace qx
