// The Copy buffer dialog on screen, driven by real key and mouse events
// through the Qt modal driver.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include "qt/form_binding.h"
#include "qt/form_views.h"
#include "qt/qt_modal_driver.h"
#include "qt/qt_text.h"
#include "qt_test_support.h"
#include "serial/copy_buffer_bench.h"

namespace qx {
namespace {

using testing_copy::CopyBufferBench;

QStringList itemsOf(const QComboBox& combo) {
    QStringList items;
    for (int i = 0; i < combo.count(); ++i) items << combo.itemText(i);
    return items;
}

class QtCopyBytesDialogTest : public ::testing::Test {
protected:
    CopyBufferBench bench;
    std::shared_ptr<ModalDriver> scripted = bench.context->Driver;

    void SetUp() override { bench.context->Driver = std::make_shared<QtModalDriver>(); }
};

TEST_F(QtCopyBytesDialogTest, EveryControlOfTheDialogHasAWidgetOfItsNameAndNoWidgetIsLeftOver) {
    frmProtocolCopyBytes dialog;
    std::unique_ptr<FormDialog> view = createFormView(dialog);
    ASSERT_NE(view, nullptr);
    FormBinding binding(dialog, *view);
    for (const std::wstring& name : binding.ControlsWithoutWidget()) ADD_FAILURE() << toQString(name).toStdString();
    for (const QString& name : binding.WidgetsWithoutControl()) ADD_FAILURE() << name.toStdString();
    EXPECT_EQ(view->windowTitle(), QStringLiteral("Copy To Buffer"));
}

TEST_F(QtCopyBytesDialogTest, TheFormatListFollowsTheDestinationAndFormat4BecomesFormat1OnAnMI) {
    bench.reopen(Bytes{4, 0}, 5, 40);
    QStringList before, after;
    QString chosenBefore, chosenAfter, operandShown;
    test::onModal(QStringLiteral("frmProtocolCopyBytes"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* formats = window.findChild<QComboBox*>(QStringLiteral("cbCopyBytes"));
        before = itemsOf(*formats);
        chosenBefore = formats->currentText();
        test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { test::pickWithKeys(picker, 3, 200); });
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOperand")), Qt::LeftButton);
        after = itemsOf(*formats);
        chosenAfter = formats->currentText();
        operandShown = window.findChild<QLabel*>(QStringLiteral("lbOperand"))->text();
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOk")), Qt::LeftButton);
    });
    bench.copy->itfFBMethod_EditOperands();
    EXPECT_EQ(before.size(), 3);
    EXPECT_EQ(chosenBefore, QStringLiteral("Convert 4 Receive Bytes to ONE Linked Element"));
    EXPECT_EQ(after, (QStringList{QStringLiteral("Convert 1 Receive Bytes to ONE Linked Element"),
                                  QStringLiteral("Convert 2 Receive Bytes to ONE Linked Element")}));
    EXPECT_EQ(chosenAfter, QStringLiteral("Convert 1 Receive Bytes to ONE Linked Element"));
    EXPECT_TRUE(operandShown.startsWith(QStringLiteral("MI 200")));
    EXPECT_TRUE(bench.accepted());
    EXPECT_EQ(bench.image(), (Bytes{1, 0}));
}

TEST_F(QtCopyBytesDialogTest, AFormatChosenWithKeysReachesTheImage) {
    bench.reopen(Bytes{1, 0}, 5, 40);
    test::onModal(QStringLiteral("frmProtocolCopyBytes"), [](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* formats = window.findChild<QComboBox*>(QStringLiteral("cbCopyBytes"));
        formats->setFocus(Qt::TabFocusReason);
        QTest::keyClick(formats, Qt::Key_Down);
        QTest::keyClick(formats, Qt::Key_Down);
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOk")), Qt::LeftButton);
    });
    bench.copy->itfFBMethod_EditOperands();
    EXPECT_EQ(bench.image(), (Bytes{4, 0}));
}

TEST_F(QtCopyBytesDialogTest, EscapeCancelsAndKeepsTheImage) {
    bench.reopen(Bytes{2, 0}, 5, 40);
    test::onModal(QStringLiteral("frmProtocolCopyBytes"),
                  [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
    bench.copy->itfFBMethod_EditOperands();
    EXPECT_FALSE(bench.accepted());
    EXPECT_EQ(bench.image(), (Bytes{2, 0}));
}

TEST_F(QtCopyBytesDialogTest, EnterOnTheFormatListAcceptsAsOkDoes) {
    bench.reopen(Bytes{1, 0}, 5, 40);
    test::onModal(QStringLiteral("frmProtocolCopyBytes"), [](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* formats = window.findChild<QComboBox*>(QStringLiteral("cbCopyBytes"));
        formats->setFocus(Qt::TabFocusReason);
        QTest::keyClick(formats, Qt::Key_Down);
        QTest::keyClick(formats, Qt::Key_Return);
        test::endIfStillShown(window);
    });
    bench.copy->itfFBMethod_EditOperands();
    EXPECT_TRUE(bench.accepted());
    EXPECT_EQ(bench.image(), (Bytes{2, 0}));
}

TEST_F(QtCopyBytesDialogTest, EscapeOnTheFormatListCancelsAndKeepsTheImage) {
    bench.reopen(Bytes{1, 0}, 5, 40);
    test::onModal(QStringLiteral("frmProtocolCopyBytes"), [](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* formats = window.findChild<QComboBox*>(QStringLiteral("cbCopyBytes"));
        formats->setFocus(Qt::TabFocusReason);
        QTest::keyClick(formats, Qt::Key_Down);
        QTest::keyClick(formats, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    bench.copy->itfFBMethod_EditOperands();
    EXPECT_FALSE(bench.accepted());
    EXPECT_EQ(bench.image(), (Bytes{1, 0}));
}
}  // namespace
}  // namespace qx
