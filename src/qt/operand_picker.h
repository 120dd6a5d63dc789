// The host's operand picker as this desktop shows it: the kinds of operand
// the operation allows (a memory type with an address, or a constant of a
// type with its value), a description, OK and Cancel. Nothing is written
// into the operand before OK.
#pragma once
#include <QComboBox>
#include <QDialog>
#include <QDoubleSpinBox>
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

    QComboBox* cbKind_;
    QSpinBox* spAddress_;
    QDoubleSpinBox* spValue_;
    QLineEdit* txtDescription_;
};

}  // namespace qx
