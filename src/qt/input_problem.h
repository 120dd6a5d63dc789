// The line under a dialog's fields that tells the person what keeps OK from
// being taken: the first wrong entry and its rule, in red, empty and hidden
// when all is well. The OK button's tooltip says the same. The words come from the
// dialog itself; OK still runs the dialog's own checks and messages.
#pragma once
#include <QLabel>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace qx {

class CommandButton;
class Control;
class Form;

class InputProblemLine : public QLabel {
public:
    InputProblemLine(std::function<std::wstring()> problem, const std::vector<Control*>& watched, QWidget* ok,
                     QWidget* parent);
    ~InputProblemLine() override;

    // Asks the dialog again and shows its answer.
    void Refresh();

private:
    std::function<std::wstring()> problem_;
    QWidget* ok_;
    std::vector<std::pair<Control*, int32_t>> subscriptions_;
};

// Adds the line to the dialogs that can explain their OK button; others stay as they are.
void addInputProblemLine(Form& form, QWidget& window);

}  // namespace qx
