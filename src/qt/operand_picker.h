// The host's operand picker as this desktop shows it: the kinds of operand
// the operation allows (a memory type with an address, or a constant of a
// type with its value), a description, OK and Cancel. An operand with a
// constant list offers its entries, and in list-only mode takes its value
// from them alone; one that reserves a vector of elements says which
// addresses it takes and keeps them within the type. Nothing is written
// into the operand before OK.
#pragma once
#include <QComboBox>
#include <QDialog>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>

#include "platform/host/operand.h"

namespace qx {

class OperandPicker : public QDialog {
public:
    explicit OperandPicker(const clsOperand& operand, QWidget* parent = nullptr);

    // Writes the choice into the operand; false when there was nothing to
    // choose from.
    bool WriteChoice(clsOperand& operand) const;

private:
    void kindChanged();
    void showVector();

    QComboBox* cbKind_;
    QSpinBox* spAddress_;
    QDoubleSpinBox* spValue_;
    QLineEdit* txtDescription_;
    QComboBox* cbConstantList_;
    QLabel* lblVector_;
    bool listOnly_ = false;
    int32_t vectorLength_ = 1;
};

}  // namespace qx
