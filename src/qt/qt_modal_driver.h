// The platform's modal driver on a desktop: each dialog a real modal window
// of its Designer form, the host's message boxes as Qt message boxes, and
// the host's operand picker as a dialog of its own.
#pragma once
#include <QPointer>
#include <QWidget>
#include <vector>

#include "platform/host/host_context.h"

namespace qx {

class Form;

class QtModalDriver : public ModalDriver {
public:
    // Dialogs open over this window (or over the dialog below them).
    explicit QtModalDriver(QWidget* mainWindow = nullptr) : mainWindow_(mainWindow) {}

    void ShowModal(Form& form) override;
    bool PickOperand(clsOperand& operand) override;
    int32_t AnswerMessage(const ShownMessage& message) override;
    void Beep() override;

    // The host's answer to a message box: 1 for OK or Yes, 7 for No.
    static constexpr int32_t AnswerNo = 7;

private:
    QWidget* topWindow() const;

    QPointer<QWidget> mainWindow_;
    // The forms shown right now, innermost last, with their windows.
    std::vector<std::pair<Form*, QWidget*>> shown_;
};

}  // namespace qx
