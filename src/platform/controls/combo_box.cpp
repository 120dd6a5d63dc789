#include "platform/controls/combo_box.h"

#include "platform/basics/runtime_error.h"

namespace qx {

ComboBox::ComboBox(std::wstring name) : Control(std::move(name), colour::Window, colour::WindowText) {}

size_t ComboBox::checkedIndex(int32_t index) const {
    if (index < 0 || index >= ListCount()) raiseError(err::InvalidPropertyArrayIndex);
    return static_cast<size_t>(index);
}

void ComboBox::AddItem(const std::wstring& text, int32_t itemData) {
    items_.push_back({text, itemData});
    newIndex_ = ListCount() - 1;
    notify("List");
}

void ComboBox::RemoveItem(int32_t index) {
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(checkedIndex(index)));
    // The choice follows its item; removing the chosen one leaves no choice.
    if (listIndex_ == index)
        listIndex_ = -1;
    else if (listIndex_ > index)
        --listIndex_;
    notify("List");
    notify("ListIndex");
}

void ComboBox::Clear() {
    items_.clear();
    listIndex_ = -1;
    newIndex_ = -1;
    notify("List");
    notify("ListIndex");
}

const std::wstring& ComboBox::List(int32_t index) const { return items_[checkedIndex(index)].Text; }

int32_t ComboBox::ItemData(int32_t index) const { return items_[checkedIndex(index)].Data; }

void ComboBox::ItemData(int32_t index, int32_t value) {
    items_[checkedIndex(index)].Data = value;
    notify("List");
}

void ComboBox::ListIndex(int32_t value) {
    if (value < -1 || value >= ListCount()) raiseError(err::InvalidPropertyValue);
    bool changed = listIndex_ != value;
    listIndex_ = value;
    if (changed) notify("ListIndex");
    if (value >= 0 && OnClick) OnClick();
}

std::wstring ComboBox::Text() const { return listIndex_ < 0 ? std::wstring() : items_[listIndex_].Text; }

void ComboBox::UserSelect(int32_t index) {
    if (!beginUserAction()) return;
    SetFocus();
    ListIndex(index);
}

}  // namespace qx
