// Drop-down lists of the field editors whose items are numbers, each item
// numbered by its text, and positioned by the number a property holds.
#pragma once
#include <cstdint>
#include <string>

#include "framework/shared_helpers.h"
#include "platform/controls/combo_box.h"

namespace qx {

// Appends the items "first" to "last".
inline void addNumbers(ComboBox& combo, int32_t first, int32_t last) {
    for (int32_t n = first; n <= last; ++n) combo.AddItem(std::to_wstring(n), n);
}

// The items "first" to "last" in place of what the list held.
inline void fillNumbers(ComboBox& combo, int32_t first, int32_t last) {
    combo.Clear();
    addNumbers(combo, first, last);
}

// Selects the item numbered value, or the first one; an empty list stays as it is.
inline void positionOn(ComboBox& combo, int32_t value) {
    if (combo.ListCount() > 0) combo.ListIndex(FindComboIndex(combo, value));
}

}  // namespace qx
