#include "message/field_list.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/basics/runtime_error.h"

namespace qx {

void FieldList::Add(VarPtr var) {
    if (!spilled_ && count_ == InlineFields) {
        heap_.reserve(2 * InlineFields);
        std::move(inline_.begin(), inline_.end(), std::back_inserter(heap_));
        for (VarPtr& moved : inline_) moved.reset();
        spilled_ = true;
    }
    if (spilled_)
        heap_.push_back(std::move(var));
    else
        inline_[count_] = std::move(var);
    ++count_;
}

void FieldList::Insert(int32_t index, VarPtr var) {
    if (index < 1 || static_cast<size_t>(index) > count_ + 1) raiseError(err::InvalidProcedureCall);
    Add(std::move(var));
    // Rotate the new last field back to its place.
    VarPtr* fields = spilled_ ? heap_.data() : inline_.data();
    std::rotate(fields + (index - 1), fields + count_ - 1, fields + count_);
}

void FieldList::Remove(int32_t index) {
    const size_t at = checkedIndex(index);
    if (spilled_) {
        heap_.erase(heap_.begin() + static_cast<std::ptrdiff_t>(at));
    } else {
        std::move(inline_.begin() + static_cast<std::ptrdiff_t>(at) + 1,
                  inline_.begin() + static_cast<std::ptrdiff_t>(count_),
                  inline_.begin() + static_cast<std::ptrdiff_t>(at));
        inline_[count_ - 1].reset();
    }
    --count_;
}

size_t FieldList::checkedIndex(int32_t index) const {
    if (index < 1 || static_cast<size_t>(index) > count_) raiseError(err::InvalidProcedureCall);
    return static_cast<size_t>(index - 1);
}

}  // namespace qx
