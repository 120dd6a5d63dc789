// The drop-down list model: items with a number each (item data), and the
// current item. Setting ListIndex to an item raises Click, also from code and
// also when it is the item already chosen, as the real control does.
#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/controls/control.h"

namespace qx {

class ComboBox : public Control {
public:
    explicit ComboBox(std::wstring name);

    // Appends an item; NewIndex tells where it went.
    void AddItem(const std::wstring& text, int32_t itemData = 0);
    void RemoveItem(int32_t index);
    // Empties the list and the choice; raises nothing.
    void Clear();
    int32_t ListCount() const { return static_cast<int32_t>(items_.size()); }
    int32_t NewIndex() const { return newIndex_; }
    // A bad index is error 381.
    const std::wstring& List(int32_t index) const;
    int32_t ItemData(int32_t index) const;
    void ItemData(int32_t index, int32_t value);

    // -1 is no choice and raises nothing; anything outside -1 .. ListCount-1 is error 380.
    int32_t ListIndex() const { return listIndex_; }
    void ListIndex(int32_t value);
    // The chosen item's text, empty without a choice.
    std::wstring Text() const;

    // A person picks item i from the drop-down.
    void UserSelect(int32_t index);

    std::function<void()> OnClick;

private:
    struct Item {
        std::wstring Text;
        int32_t Data;
    };
    size_t checkedIndex(int32_t index) const;

    std::vector<Item> items_;
    int32_t listIndex_ = -1;
    int32_t newIndex_ = -1;
};

}  // namespace qx
