// The serial Config dialog on screen, driven by real key and mouse events
// through the Qt modal driver, against the same edit made headless.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

#include "framework/shared_helpers.h"
#include "qt/form_binding.h"
#include "qt/form_views.h"
#include "qt/model_action.h"
#include "qt/qt_modal_driver.h"
#include "qt/qt_text.h"
#include "qt_test_support.h"
#include "serial/config_bench.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using testing_config::ConfigBench;

class QtConfigDialogTest : public ::testing::Test {
protected:
    ConfigBench bench;
    // The scripted driver the bench holds by reference stays alive.
    std::shared_ptr<ModalDriver> scripted = bench.context->Driver;

    void SetUp() override { bench.context->Driver = std::make_shared<QtModalDriver>(); }
};

TEST_F(QtConfigDialogTest, EveryControlOfTheDialogHasAWidgetOfItsNameAndNoWidgetIsLeftOver) {
    frmProtocolConfig dialog;
    std::unique_ptr<FormDialog> view = createFormView(dialog);
    ASSERT_NE(view, nullptr);
    FormBinding binding(dialog, *view);
    EXPECT_TRUE(binding.ControlsWithoutWidget().empty());
    for (const QString& name : binding.WidgetsWithoutControl()) ADD_FAILURE() << name.toStdString();
    EXPECT_EQ(view->windowTitle(), QStringLiteral("Protocol Configuration"));
    EXPECT_EQ(view->findChild<QLabel*>(QStringLiteral("lblOpFail"))->text(), QStringLiteral("Function in progress :"));
    EXPECT_EQ(view->findChild<QPushButton*>(QStringLiteral("cmdFailLink"))->toolTip(),
              QStringLiteral("Link Operand to Variable"));
}

TEST_F(QtConfigDialogTest, ANewConfigMadeWithKeysAndMouseEqualsTheOneMadeHeadless) {
    bench.makeNew();
    int beepsAfterBadKey = -1;
    std::wstring nameAfterBadKey = L"unchanged";
    QString shownPort;
    test::onModal(QStringLiteral("OperandPicker"), [&](QWidget& picker) {
        test::saveScreenshot(picker, QStringLiteral("operand_picker.png"));
        test::onModal(QStringLiteral("OperandPicker"), [](QWidget& second) { test::pickWithKeys(second, 3, 200); });
        test::pickWithKeys(picker, 1, 100);
    });
    test::onModal(QStringLiteral("frmProtocolConfig"), [&](QWidget& window) {
        auto& view = static_cast<FormDialog&>(window);
        auto& form = static_cast<frmProtocolConfig&>(view.BoundForm());
        auto* name = window.findChild<QLineEdit*>(QStringLiteral("txtInstanceName"));
        QApplication::setActiveWindow(&window);
        name->setFocus(Qt::TabFocusReason);
        // A forbidden character beeps and clears the whole name.
        QTest::keyClicks(name, QStringLiteral("Pr|"));
        beepsAfterBadKey = host().BeepCount;
        nameAfterBadKey = fromQString(name->text());
        QTest::keyClicks(name, QStringLiteral("Printer"));
        auto* port = window.findChild<QComboBox*>(QStringLiteral("cbComport"));
        QTest::keyClick(port, Qt::Key_Down);
        QTest::keyClick(port, Qt::Key_Down);
        shownPort = port->currentText();
        EXPECT_EQ(form.txtInstanceName.Text(), L"Printer");
        test::saveScreenshot(window, QStringLiteral("config_dialog.png"));
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOk")), Qt::LeftButton);
    });
    bench.config->itfFBMethod_EditOperands();

    EXPECT_EQ(beepsAfterBadKey, 1);
    EXPECT_EQ(nameAfterBadKey, L"");
    EXPECT_EQ(shownPort, QStringLiteral("COM3"));
    ASSERT_FALSE(bench.config->itfFBMethod_IsCanceled());

    ConfigBench headless;
    headless.makeNew();
    headless.driver.QueuePick(testing_config::memoryChoice(1, 100, L""));
    headless.driver.QueuePick(testing_config::memoryChoice(3, 200, L""));
    headless.onDialog([](frmProtocolConfig& dialog) {
        dialog.txtInstanceName.UserType(L"Printer");
        dialog.cbComport.UserSelect(2);
        dialog.cmdOk.UserClick();
    });
    headless.config->itfFBMethod_EditOperands();

    EXPECT_EQ(bench.config->itfFBMethod_BinaryOperands(), headless.config->itfFBMethod_BinaryOperands());
    EXPECT_EQ(bench.config->itfFBMethod_BinaryOperands(), (Bytes{0x03, 0x00}));
    EXPECT_EQ(bench.config->itfFBMethod_FatherInstanceName(), headless.config->itfFBMethod_FatherInstanceName());
    for (int32_t i = 1; i <= 2; ++i) {
        EXPECT_EQ(bench.operand(i)->OperandType(), headless.operand(i)->OperandType()) << i;
        EXPECT_EQ(bench.operand(i)->OperandAddress(), headless.operand(i)->OperandAddress()) << i;
        EXPECT_FALSE(bench.operand(i)->IsNew()) << i;
    }
}

TEST_F(QtConfigDialogTest, EscapeInThePickerAndThenInTheDialogCancelsTheNewConfig) {
    bench.makeNew();
    bool okEnabled = true;
    test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { QTest::keyClick(&picker, Qt::Key_Escape); });
    test::onModal(QStringLiteral("frmProtocolConfig"), [&](QWidget& window) {
        okEnabled = window.findChild<QPushButton*>(QStringLiteral("cmdOk"))->isEnabled();
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_FALSE(okEnabled);
    EXPECT_TRUE(bench.config->itfFBMethod_IsCanceled());
    EXPECT_TRUE(bench.config->itfFBMethod_IsNew());
    EXPECT_TRUE(bench.operand(1)->IsNew());
    EXPECT_TRUE(bench.operand(2)->IsNew());
}

TEST_F(QtConfigDialogTest, AnEmptyNameAtOkShowsMessage152AndTheDialogStays) {
    bench.reopen(L"Line1", Bytes{1, 0});
    std::vector<QString> boxes;
    test::onModal(QStringLiteral("frmProtocolConfig"), [&](QWidget& window) {
        auto* name = window.findChild<QLineEdit*>(QStringLiteral("txtInstanceName"));
        QApplication::setActiveWindow(&window);
        name->setFocus(Qt::TabFocusReason);
        // The serial Config selects nothing on focus: the person selects the name to erase it.
        QTest::keyClick(name, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(name, Qt::Key_Backspace);
        // The message box is answered, then the dialog is still there to cancel.
        test::onModal(QString(), [&](QWidget& box) {
            boxes.push_back(box.metaObject()->className());
            QTest::keyClick(&box, Qt::Key_Return);
        });
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOk")), Qt::LeftButton);
        EXPECT_TRUE(window.isVisible());
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    bench.config->itfFBMethod_EditOperands();
    ASSERT_EQ(bench.context->Messages.size(), 1u);
    EXPECT_EQ(bench.context->Messages[0].Number, 152);
    EXPECT_EQ(boxes, (std::vector<QString>{QStringLiteral("QMessageBox")}));
    EXPECT_TRUE(bench.config->itfFBMethod_IsCanceled());
}

// The Config form with code of its own that raises: while it loads, or at
// a key. Shown without an edit behind it, it loads and activates as nothing.
class RaisingConfigDialog : public frmProtocolConfig {
public:
    bool raiseOnLoad = false;
    void Form_Load() override {
        if (raiseOnLoad) throw RuntimeError(5, L"test", L"Invalid procedure call");
    }
    void Form_Activate() override {}
    void Form_KeyPress(int32_t& KeyAscii) override {
        if (KeyAscii == 'x') throw RuntimeError(13, L"test", L"Type mismatch");
    }
};

TEST_F(QtConfigDialogTest, AnErrorWhileTheDialogLoadsComesOutOfShowModalAndLeavesNoWindowBehind) {
    QtModalDriver driver;
    RaisingConfigDialog dialog;
    dialog.raiseOnLoad = true;
    EXPECT_EQ(test::raisedError([&] { driver.ShowModal(dialog); }).Number(), 5);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    // The driver has forgotten the window: a message box opens over nothing freed.
    test::onModal(QString(), [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Return); });
    ShownMessage done;
    done.Number = 1;
    done.Text = L"Done.";
    EXPECT_EQ(driver.AnswerMessage(done), 1);
}

TEST_F(QtConfigDialogTest, AnErrorOfAKeyEndsTheDialogAndComesOutOfShowModal) {
    QtModalDriver driver;
    RaisingConfigDialog dialog;
    dialog.KeyPreview(true);
    test::onModal(QStringLiteral("frmProtocolConfig"), [](QWidget& window) { QTest::keyClick(&window, Qt::Key_X); });
    EXPECT_EQ(test::raisedError([&] { driver.ShowModal(dialog); }).Number(), 13);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_FALSE(takeModelActionError());
}

TEST_F(QtConfigDialogTest, EnterInTheNameBoxAcceptsAsOkDoes) {
    bench.reopen(L"Line1", Bytes{1, 0});
    test::onModal(QStringLiteral("frmProtocolConfig"), [](QWidget& window) {
        auto* name = window.findChild<QLineEdit*>(QStringLiteral("txtInstanceName"));
        QApplication::setActiveWindow(&window);
        name->setFocus(Qt::TabFocusReason);
        QTest::keyClick(name, Qt::Key_End);
        QTest::keyClicks(name, QStringLiteral("2"));
        QTest::keyClick(name, Qt::Key_Return);
        test::endIfStillShown(window);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_FALSE(bench.config->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.config->itfFBMethod_FatherInstanceName(), L"Line12");
}

TEST_F(QtConfigDialogTest, EnterWithAnEmptyNameShowsMessage152AsOkDoesAndEscapeThenCancels) {
    bench.reopen(L"Line1", Bytes{1, 0});
    bool shownAfterEnter = false;
    test::onModal(QStringLiteral("frmProtocolConfig"), [&](QWidget& window) {
        auto* name = window.findChild<QLineEdit*>(QStringLiteral("txtInstanceName"));
        QApplication::setActiveWindow(&window);
        name->setFocus(Qt::TabFocusReason);
        QTest::keyClick(name, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(name, Qt::Key_Backspace);
        test::onModal(QString(), [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Return); });
        QTest::keyClick(name, Qt::Key_Return);
        shownAfterEnter = window.isVisible();
        QTest::keyClick(name, Qt::Key_Escape);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_TRUE(shownAfterEnter);
    ASSERT_EQ(bench.context->Messages.size(), 1u);
    EXPECT_EQ(bench.context->Messages[0].Number, 152);
    EXPECT_TRUE(bench.config->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.config->itfFBMethod_FatherInstanceName(), L"Line1");
}
TEST_F(QtConfigDialogTest, AnUnlinkedOperandIsNamedUnderTheFieldsAndOnOKUntilLinked) {
    bench.makeNew();
    QString shown, tip, afterLinks = QStringLiteral("?");
    bool visible = false, visibleAfterLinks = true;
    test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { QTest::keyClick(&picker, Qt::Key_Escape); });
    test::onModal(QStringLiteral("frmProtocolConfig"), [&](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* line = window.findChild<QLabel*>(QStringLiteral("inputProblem"));
        ASSERT_NE(line, nullptr);
        shown = line->text();
        visible = line->isVisible();
        tip = window.findChild<QPushButton*>(QStringLiteral("cmdOk"))->toolTip();
        test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { test::pickWithKeys(picker, 1, 100); });
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdFailLink")), Qt::LeftButton);
        test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { test::pickWithKeys(picker, 3, 200); });
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdStatusOp")), Qt::LeftButton);
        afterLinks = line->text();
        visibleAfterLinks = line->isVisible();
        QTest::keyClick(&window, Qt::Key_Escape);
        test::endIfStillShown(window);
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(shown, QStringLiteral("\"Function in progress\" must be linked: press ..."));
    EXPECT_TRUE(visible);
    EXPECT_EQ(tip, shown);
    EXPECT_EQ(afterLinks, QString());
    EXPECT_FALSE(visibleAfterLinks);
}
}  // namespace
}  // namespace qx
