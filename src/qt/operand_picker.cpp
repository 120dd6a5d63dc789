#include "qt/operand_picker.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "platform/host/host_services.h"
#include "qt/qt_text.h"

namespace qx {

namespace {

constexpr int32_t ConstantMode = 2;
// Constants are fixed point, their value times 10000.
constexpr double FixedPointScale = 10000.0;

// The kind of an item: mode in the high half of the data, type in the low.
int kindData(int32_t mode, int32_t type) { return mode * 0x10000 + type; }
int32_t modeOf(int data) { return data / 0x10000; }
int32_t typeOf(int data) { return data % 0x10000; }

}  // namespace

OperandPicker::OperandPicker(const clsOperand& operand, QWidget* parent)
    : QDialog(parent),
      cbKind_(new QComboBox(this)),
      spAddress_(new QSpinBox(this)),
      spValue_(new QDoubleSpinBox(this)),
      txtDescription_(new QLineEdit(this)),
      cbConstantList_(new QComboBox(this)),
      lblVector_(new QLabel(this)) {
    setObjectName(QStringLiteral("OperandPicker"));
    setWindowTitle(operand.OperandTitle().empty() ? QStringLiteral("Operand") : toQString(operand.OperandTitle()));
    cbKind_->setObjectName(QStringLiteral("cbKind"));
    spAddress_->setObjectName(QStringLiteral("spAddress"));
    spValue_->setObjectName(QStringLiteral("spValue"));
    txtDescription_->setObjectName(QStringLiteral("txtDescription"));
    cbConstantList_->setObjectName(QStringLiteral("cbConstantList"));
    lblVector_->setObjectName(QStringLiteral("lblVector"));

    const clsOperandTypeNames names;
    for (const AllowedType& allowed : operand.AllowedTypes()) {
        // A type allowed and forbidden again is offered by its latest word, once.
        if (!operand.IsTypeAllowed(allowed.Mode, allowed.OperandType) ||
            cbKind_->findData(kindData(allowed.Mode, allowed.OperandType)) >= 0)
            continue;
        QString text = toQString(names.GetName(allowed.OperandType));
        if (allowed.Mode == ConstantMode) text += QStringLiteral(" (constant)");
        cbKind_->addItem(text, kindData(allowed.Mode, allowed.OperandType));
    }
    // A linked operand opens on its own kind and address.
    const int current = cbKind_->findData(kindData(operand.OperandMode(), operand.OperandType()));
    if (current >= 0 && !operand.IsNew()) cbKind_->setCurrentIndex(current);
    spAddress_->setRange(0, 65535);
    if (!operand.IsNew() && operand.OperandAddress() >= 0) spAddress_->setValue(operand.OperandAddress());
    // An image carries a constant as four bytes of a whole number;
    // kindChanged narrows the range to the kind's.
    spValue_->setDecimals(0);
    spValue_->setRange(-2147483648.0, 4294967295.0);
    spValue_->setValue(static_cast<double>(operand.OperandConstantValue()) / FixedPointScale);
    txtDescription_->setText(toQString(operand.OperandDescription()));
    for (const auto& [value, text] : operand.ConstantList())
        cbConstantList_->addItem(QStringLiteral("%1 : %2").arg(value).arg(toQString(text)), value);
    listOnly_ = operand.OperandConstantListOnly() && cbConstantList_->count() > 0;
    // A constant of the list opens on its entry.
    const double currentValue = spValue_->value();
    for (int i = 0; i < cbConstantList_->count(); ++i)
        if (cbConstantList_->itemData(i).toDouble() == currentValue) cbConstantList_->setCurrentIndex(i);
    connect(cbConstantList_, &QComboBox::currentIndexChanged, this,
            [this] { spValue_->setValue(cbConstantList_->currentData().toDouble()); });
    if (listOnly_) spValue_->setValue(cbConstantList_->currentData().toDouble());
    vectorLength_ = std::max(1, operand.OperandVectorLength());
    spAddress_->setMaximum(65535 - (vectorLength_ - 1));
    connect(spAddress_, &QSpinBox::valueChanged, this, [this] { showVector(); });

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Operand"), cbKind_);
    form->addRow(QStringLiteral("Address"), spAddress_);
    form->addRow(QStringLiteral("Value"), spValue_);
    if (cbConstantList_->count() > 0)
        form->addRow(QStringLiteral("From the list"), cbConstantList_);
    else
        cbConstantList_->hide();
    if (vectorLength_ > 1)
        form->addRow(QString(), lblVector_);
    else
        lblVector_->hide();
    form->addRow(QStringLiteral("Description"), txtDescription_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->setObjectName(QStringLiteral("buttons"));
    buttons->button(QDialogButtonBox::Ok)->setEnabled(cbKind_->count() > 0);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    // Wide enough for a description of the host's usual length.
    txtDescription_->setMinimumWidth(txtDescription_->fontMetrics().averageCharWidth() * 32);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    connect(cbKind_, &QComboBox::currentIndexChanged, this, [this] { kindChanged(); });
    kindChanged();
    showVector();
}

void OperandPicker::kindChanged() {
    const bool constant = modeOf(cbKind_->currentData().toInt()) == ConstantMode;
    // 35 and 38 go into the image unsigned, the other constants signed.
    const int32_t type = typeOf(cbKind_->currentData().toInt());
    const QSignalBlocker quiet(spValue_);
    if (type == 35 || type == 38)
        spValue_->setRange(0, 4294967295.0);
    else
        spValue_->setRange(-2147483648.0, 2147483647.0);
    spAddress_->setEnabled(!constant);
    spValue_->setEnabled(constant && !listOnly_);
    cbConstantList_->setEnabled(constant);
    lblVector_->setEnabled(!constant);
}

void OperandPicker::showVector() {
    lblVector_->setText(QStringLiteral("Takes %1 elements: %2 to %3")
                            .arg(vectorLength_)
                            .arg(spAddress_->value())
                            .arg(spAddress_->value() + vectorLength_ - 1));
}

bool OperandPicker::WriteChoice(clsOperand& operand) const {
    if (cbKind_->currentIndex() < 0) return false;
    const int data = cbKind_->currentData().toInt();
    // A constant's address is its place in the host's constant table: one
    // that was something else before gets a place of its own.
    if (modeOf(data) == ConstantMode &&
        (operand.OperandMode() != ConstantMode || operand.OperandType() != typeOf(data) || operand.IsNew()))
        operand.OperandAddress(-1);
    operand.OperandMode(modeOf(data));
    operand.OperandType(typeOf(data));
    operand.OperandDescription(fromQString(txtDescription_->text()));
    if (modeOf(data) == ConstantMode)
        operand.OperandConstantValue(static_cast<int64_t>(std::llround(spValue_->value() * FixedPointScale)));
    else
        operand.OperandAddress(spAddress_->value());
    return true;
}

}  // namespace qx
