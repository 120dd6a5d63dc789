// The host's operand picker on screen: the kinds an operand allows, a
// constant list with its list-only mode, a vector of elements, Cancel.
#include "qt/operand_picker.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QTest>

#include "platform/host/host_context.h"
#include "qt_test_support.h"

namespace qx {
namespace {

constexpr int32_t MemoryMode = 1;
constexpr int32_t ConstantMode = 2;

class OperandPickerTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    clsOperand operand;

    template <class W>
    W* child(OperandPicker& picker, const char* name) {
        W* widget = picker.findChild<W*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
};

TEST_F(OperandPickerTest, OffersTheAllowedKindsOnlyAndWritesNothingBeforeOk) {
    operand.AddAllowedType(MemoryMode, 3, true);
    operand.AddAllowedType(MemoryMode, 5, false);
    operand.AddAllowedType(ConstantMode, 34, true);
    OperandPicker picker(operand);
    auto* kind = child<QComboBox>(picker, "cbKind");
    ASSERT_EQ(kind->count(), 2);
    EXPECT_EQ(kind->itemText(0), QStringLiteral("MI"));
    EXPECT_TRUE(kind->itemText(1).endsWith(QStringLiteral("(constant)")));
    QTest::keyClicks(child<QSpinBox>(picker, "spAddress"), QStringLiteral("42"));
    EXPECT_TRUE(operand.IsNew());
    EXPECT_EQ(operand.OperandAddress(), -1);
    ASSERT_TRUE(picker.WriteChoice(operand));
    EXPECT_EQ(operand.OperandType(), 3);
    EXPECT_EQ(operand.OperandAddress(), 42);
}

TEST_F(OperandPickerTest, ATypeAllowedAndForbiddenAgainIsOfferedByItsLatestWordOnce) {
    operand.AddAllowedType(MemoryMode, 3, true);
    operand.AddAllowedType(MemoryMode, 7, true);
    operand.AddAllowedType(MemoryMode, 7, false);
    operand.AddAllowedType(MemoryMode, 3, true);
    OperandPicker picker(operand);
    auto* kind = child<QComboBox>(picker, "cbKind");
    ASSERT_EQ(kind->count(), 1);
    EXPECT_EQ(kind->itemText(0), QStringLiteral("MI"));
}

TEST_F(OperandPickerTest, AConstantListOffersItsEntriesAndTheChosenOneBecomesTheValue) {
    operand.AddAllowedType(ConstantMode, 34, true);
    operand.OperandConstantListMode(1);
    operand.SetConstantList({{1, L"Socket 1"}, {2, L"Socket 2"}, {3, L"Socket 3"}}, 0);
    OperandPicker picker(operand);
    auto* list = child<QComboBox>(picker, "cbConstantList");
    ASSERT_EQ(list->count(), 3);
    EXPECT_EQ(list->itemText(1), QStringLiteral("2 : Socket 2"));
    EXPECT_TRUE(child<QDoubleSpinBox>(picker, "spValue")->isEnabled());
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(child<QDoubleSpinBox>(picker, "spValue")->value(), 3.0);
    ASSERT_TRUE(picker.WriteChoice(operand));
    EXPECT_EQ(operand.OperandMode(), ConstantMode);
    EXPECT_EQ(operand.OperandConstantValue(), 3'0000);
}

TEST_F(OperandPickerTest, InListOnlyModeTheValueComesFromTheListAlone) {
    operand.AddAllowedType(ConstantMode, 34, true);
    operand.OperandConstantListMode(1);
    operand.OperandConstantListOnly(true);
    operand.SetConstantList({{7, L"Seven"}, {9, L"Nine"}}, 0);
    operand.OperandConstantValue(9'0000);
    operand.IsNew(false);
    operand.OperandMode(ConstantMode);
    operand.OperandType(34);
    OperandPicker picker(operand);
    EXPECT_FALSE(child<QDoubleSpinBox>(picker, "spValue")->isEnabled());
    auto* list = child<QComboBox>(picker, "cbConstantList");
    EXPECT_TRUE(list->isEnabled());
    // A constant of the list opens on its own entry.
    EXPECT_EQ(list->currentIndex(), 1);
    QTest::keyClick(list, Qt::Key_Up);
    ASSERT_TRUE(picker.WriteChoice(operand));
    EXPECT_EQ(operand.OperandConstantValue(), 7'0000);
}

TEST_F(OperandPickerTest, AVectorKeepsAllItsElementsWithinTheType) {
    operand.AddAllowedType(MemoryMode, 3, true);
    operand.OperandVectorLength(5);
    OperandPicker picker(operand);
    auto* address = child<QSpinBox>(picker, "spAddress");
    EXPECT_EQ(address->maximum(), 65531);
    address->setValue(100);
    EXPECT_EQ(child<QLabel>(picker, "lblVector")->text(), QStringLiteral("Takes 5 elements: 100 to 104"));
    address->setValue(65535);
    EXPECT_EQ(address->value(), 65531);
    ASSERT_TRUE(picker.WriteChoice(operand));
    EXPECT_EQ(operand.OperandAddress(), 65531);
}

TEST_F(OperandPickerTest, AMemoryOperandMadeAConstantTakesANewPlaceInTheConstantTable) {
    operand.AddAllowedType(MemoryMode, 3, true);
    operand.AddAllowedType(ConstantMode, 34, true);
    operand.IsNew(false);
    operand.OperandType(3);
    operand.OperandAddress(200);
    OperandPicker picker(operand);
    auto* kind = child<QComboBox>(picker, "cbKind");
    QTest::keyClick(kind, Qt::Key_Down);
    ASSERT_EQ(kind->currentIndex(), 1);
    auto* value = child<QDoubleSpinBox>(picker, "spValue");
    QTest::keyClick(value, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(value, QStringLiteral("1000000"));
    ASSERT_TRUE(picker.WriteChoice(operand));
    EXPECT_EQ(operand.OperandMode(), ConstantMode);
    EXPECT_EQ(operand.OperandAddress(), -1);
    EXPECT_EQ(operand.OperandConstantValue(), 1000000LL * 10000);
}

TEST_F(OperandPickerTest, ConstantsTakeTheWholeNumbersOfTheirFourBytes) {
    operand.AddAllowedType(ConstantMode, 34, true);
    operand.AddAllowedType(ConstantMode, 35, true);
    OperandPicker picker(operand);
    auto* value = child<QDoubleSpinBox>(picker, "spValue");
    EXPECT_EQ(value->decimals(), 0);
    EXPECT_EQ(value->minimum(), -2147483648.0);
    EXPECT_EQ(value->maximum(), 2147483647.0);
    QTest::keyClick(child<QComboBox>(picker, "cbKind"), Qt::Key_Down);
    EXPECT_EQ(value->minimum(), 0.0);
    EXPECT_EQ(value->maximum(), 4294967295.0);
}

TEST_F(OperandPickerTest, NothingToChooseFromWritesNothing) {
    operand.AddAllowedType(MemoryMode, 3, false);
    OperandPicker picker(operand);
    EXPECT_EQ(child<QComboBox>(picker, "cbKind")->count(), 0);
    EXPECT_FALSE(picker.WriteChoice(operand));
    EXPECT_EQ(operand.OperandAddress(), -1);
}

TEST_F(OperandPickerTest, EnterInTheAddressAcceptsAndEscapeCancels) {
    operand.AddAllowedType(MemoryMode, 3, true);
    OperandPicker accepted(operand);
    test::onModal(QStringLiteral("OperandPicker"), [](QWidget& window) {
        auto* spin = window.findChild<QSpinBox*>(QStringLiteral("spAddress"));
        spin->setFocus(Qt::TabFocusReason);
        QTest::keyClicks(spin, QStringLiteral("42"));
        QTest::keyClick(spin, Qt::Key_Return);
        if (window.isVisible()) static_cast<QDialog&>(window).done(-1);
    });
    EXPECT_EQ(accepted.exec(), QDialog::Accepted);
    ASSERT_TRUE(accepted.WriteChoice(operand));
    EXPECT_EQ(operand.OperandAddress(), 42);

    OperandPicker canceled(operand);
    test::onModal(QStringLiteral("OperandPicker"), [](QWidget& window) {
        auto* spin = window.findChild<QSpinBox*>(QStringLiteral("spAddress"));
        spin->setFocus(Qt::TabFocusReason);
        QTest::keyClick(spin, Qt::Key_Escape);
        if (window.isVisible()) static_cast<QDialog&>(window).done(-1);
    });
    EXPECT_EQ(canceled.exec(), QDialog::Rejected);
}

}  // namespace
}  // namespace qx
