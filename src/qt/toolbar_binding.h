// The toolbar model on screen: its docked bands as the actions of a
// QToolBar (a label as a label, a control tool as the widget that shows that
// control, moved into the toolbar), and its open popup band as a QMenu at the
// recorded place. A click or a pick goes to the toolbar's User* actions; a
// menu closed with nothing picked is UserDismissPopup.
#pragma once
#include <QPoint>
#include <memory>

#include "qt/control_binding.h"

namespace qx {

class Control;

// nullptr unless the control is a toolbar and the widget a QToolBar.
std::unique_ptr<ControlBinding> bindToolBar(Control& control, QWidget& widget);

// Where a popup placed at X, Y twips over a widget appears on the screen; a
// scroll area's point is one of its scrolled contents.
QPoint popupPoint(QWidget& over, int X, int Y);

}  // namespace qx
