// clsOperand: one link to a controller operand, as the host's closed operand
// library gives it. This stand-in keeps its state in the object and reaches
// the host's operand table and picker through the current host context.
// Its code is the library's, so a live operand keeps the component loaded.
#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/basics/object_arena.h"
#include "platform/basics/object_count.h"
#include "platform/basics/variant.h"

namespace qx {

struct AllowedType {
    int32_t Mode;
    int32_t OperandType;
    bool Allowed;
    bool operator==(const AllowedType&) const = default;
};

class clsOperand : protected CountedObject {
public:
    clsOperand();
    ~clsOperand();
    clsOperand(const clsOperand&) = delete;
    clsOperand& operator=(const clsOperand&) = delete;

    void OperandCaption(const std::wstring& v) { caption_ = v; }
    std::wstring OperandCaption() const { return caption_; }
    std::wstring OperandValueText() const;
    VariantArray GetOperandState() const;
    void SetOperandState(const VariantArray& state);
    // Inline: every field of a loaded image adds several.
    void AddAllowedType(int32_t mode, int32_t operandType, bool allowed) {
        if (allowedCount_ < allowed_.size())
            allowed_[allowedCount_++] = {mode, operandType, allowed};
        else
            addAllowedTypeBeyondInline({mode, operandType, allowed});
    }
    void OperandTitle(const std::wstring& v) { title_ = v; }
    std::wstring OperandTitle() const { return title_; }
    bool IsNew() const { return isNew_; }
    void IsNew(bool v) { isNew_ = v; }
    bool IsEditCanceled() const { return editCanceled_; }
    int32_t OperandMode() const { return mode_; }
    void OperandMode(int32_t v) { mode_ = v; }
    int32_t OperandType() const { return type_; }
    void OperandType(int32_t v) { type_ = v; }
    int32_t OperandNetID() const { return netId_; }
    void OperandNetID(int32_t v) { netId_ = v; }
    int32_t OperandAddress() const { return address_; }
    void OperandAddress(int32_t v) { address_ = v; }
    std::wstring OperandDescription() const { return description_; }
    void OperandDescription(const std::wstring& v) { description_ = v; }
    bool HasValue() const { return hasValue_; }
    void HasValue(bool v) { hasValue_ = v; }
    // Fixed point, value times 10000.
    int64_t OperandConstantValue() const { return constantValue_; }
    void OperandConstantValue(int64_t v) { constantValue_ = v; }
    int32_t OperandFormat() const { return format_; }
    void OperandFormat(int32_t v) { format_ = v; }
    void OperandConstantListMode(int32_t v) { constantListMode_ = v; }
    int32_t OperandConstantListMode() const { return constantListMode_; }
    void OperandConstantListOnly(bool v) { constantListOnly_ = v; }
    bool OperandConstantListOnly() const { return constantListOnly_; }
    void SetConstantList(const std::vector<std::pair<int32_t, std::wstring>>& list, int32_t reserved);
    const std::vector<std::pair<int32_t, std::wstring>>& ConstantList() const { return constantList_; }
    std::wstring OperandDisplayName() const;
    bool IsRegistered() const;
    void ReleaseOperand();
    void RegisterConstant();
    void RegisterOperand();
    // The host's modal picker; a scripted person answers it in tests.
    void EditOperand();
    void ClearAllowedTypes();
    void AllocateConstantAddress(int32_t& address);
    void OperandVectorLength(int32_t v) { vectorLength_ = v; }
    int32_t OperandVectorLength() const { return vectorLength_; }

    // What the picker may offer, as a copy; read by the picker stand-in and by tests.
    std::vector<AllowedType> AllowedTypes() const;
    bool IsTypeAllowed(int32_t mode, int32_t operandType) const;

private:
    std::wstring caption_, title_, description_;
    bool isNew_ = true;
    bool editCanceled_ = false;
    int32_t mode_ = 1;
    int32_t type_ = 0;
    int32_t netId_ = 0;
    int32_t address_ = -1;
    bool hasValue_ = false;
    int64_t constantValue_ = 0;
    int32_t format_ = 0;
    int32_t constantListMode_ = 0;
    bool constantListOnly_ = false;
    int32_t vectorLength_ = 1;
    std::vector<std::pair<int32_t, std::wstring>> constantList_;
    // An operand allows a handful of types (nine at most in this library),
    // kept in the object itself: every field of a loaded image makes one.
    // Any beyond the inline ones go to allowedMore_.
    static constexpr size_t InlineAllowedTypes = 12;
    // Only the first allowedCount_ entries are ever read, so none is set up front.
    std::array<AllowedType, InlineAllowedTypes> allowed_;
    size_t allowedCount_ = 0;
    std::vector<AllowedType> allowedMore_;
    void addAllowedTypeBeyondInline(const AllowedType& type);
};

using OperandPtr = std::shared_ptr<clsOperand>;

// A fresh operand of the host, as a plain create of the closed class makes it.
inline OperandPtr newOperand() { return makeShared<clsOperand>(); }

// What an operand link is in the host's table: its identity.
struct OperandChoice {
    int32_t Mode = 1;
    int32_t OperandType = 0;
    int32_t OperandAddress = 0;
    int32_t OperandNetID = 0;
    std::wstring Description;
    int64_t ConstantValue = 0;  // for constant types, value times 10000
};

}  // namespace qx
