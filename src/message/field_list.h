// The fields of a message in position order, numbered from 1 as the host's
// collection numbers them and with its error for a bad place. A message holds
// a few fields, so the first ones lie inside the message and a message is
// read without an allocation for its list; more go to the heap.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "message/itf_protocol_var.h"

namespace qx {

class FieldList {
public:
    static constexpr size_t InlineFields = 4;

    int32_t Count() const { return static_cast<int32_t>(count_); }
    void Add(VarPtr var);
    // A bad place raises RuntimeError(5).
    const VarPtr& Item(int32_t index) const { return data()[checkedIndex(index)]; }
    // Puts the field at that place (Count + 1 appends); others move up one.
    void Insert(int32_t index, VarPtr var);
    void Remove(int32_t index);

    const VarPtr* begin() const { return data(); }
    const VarPtr* end() const { return data() + count_; }

private:
    const VarPtr* data() const { return spilled_ ? heap_.data() : inline_.data(); }
    size_t checkedIndex(int32_t index) const;

    std::array<VarPtr, InlineFields> inline_;
    std::vector<VarPtr> heap_;
    size_t count_ = 0;
    bool spilled_ = false;
};

}  // namespace qx
