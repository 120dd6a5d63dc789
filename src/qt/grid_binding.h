// The grid model on screen: a QTableView over a table-model adapter of the
// grid. Row 0 of a grid with a fixed row is the view's header; the cells of
// fixed columns are painted as buttons and take no selection. Clicks, double
// clicks, arrow keys and the cell editor go to the grid's User* actions; the
// grid alone moves the current cell and opens and closes the editor, and the
// view follows what it says.
#pragma once
#include <memory>

#include "qt/control_binding.h"

namespace qx {

class Control;

// nullptr unless the control is a grid and the widget a QTableView.
std::unique_ptr<ControlBinding> bindGrid(Control& control, QWidget& widget);

}  // namespace qx
