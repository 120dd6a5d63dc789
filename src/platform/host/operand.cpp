#include "platform/host/operand.h"

#include "platform/host/host_context.h"
#include "platform/host/host_services.h"

namespace qx {

clsOperand::clsOperand() = default;
clsOperand::~clsOperand() = default;

std::wstring clsOperand::OperandValueText() const {
    return clsOperandFormats().GetValueText(type_, format_, constantValue_);
}

// The whole state but the mode and the format, which a registered link
// takes from the host's table.
VariantArray clsOperand::GetOperandState() const {
    VariantArray state;
    const std::vector<AllowedType> allowed = AllowedTypes();
    state.reserve(16 + 3 * allowed.size() + 2 * constantList_.size());
    for (Variant v : {Variant(caption_), Variant(title_), Variant(description_), Variant(isNew_), Variant(type_),
                      Variant(netId_), Variant(address_), Variant(hasValue_), Variant(constantValue_),
                      Variant(constantListMode_), Variant(constantListOnly_), Variant(vectorLength_)})
        state.push_back(std::move(v));
    state.push_back(static_cast<int32_t>(allowed.size()));
    for (const auto& a : allowed) {
        state.push_back(a.Mode);
        state.push_back(a.OperandType);
        state.push_back(a.Allowed);
    }
    state.push_back(static_cast<int32_t>(constantList_.size()));
    for (const auto& [value, text] : constantList_) {
        state.push_back(value);
        state.push_back(text);
    }
    return state;
}

void clsOperand::SetOperandState(const VariantArray& state) {
    size_t i = 0;
    auto next = [&]() -> const Variant& { return state.at(i++); };
    caption_ = next().ToText();
    title_ = next().ToText();
    description_ = next().ToText();
    isNew_ = next().ToBool();
    type_ = next().ToI4();
    netId_ = next().ToI4();
    address_ = next().ToI4();
    hasValue_ = next().ToBool();
    constantValue_ = next().ToI8();
    constantListMode_ = next().ToI4();
    constantListOnly_ = next().ToBool();
    vectorLength_ = next().ToI4();
    ClearAllowedTypes();
    for (int32_t n = next().ToI4(); n > 0; --n) {
        AllowedType a{};
        a.Mode = next().ToI4();
        a.OperandType = next().ToI4();
        a.Allowed = next().ToBool();
        AddAllowedType(a.Mode, a.OperandType, a.Allowed);
    }
    constantList_.clear();
    for (int32_t n = next().ToI4(); n > 0; --n) {
        int32_t value = next().ToI4();
        constantList_.emplace_back(value, next().ToText());
    }
    if (const auto* entry = host().Operands.Find(type_, address_)) {
        mode_ = entry->Mode;
        format_ = entry->Format;
    }
}

void clsOperand::addAllowedTypeBeyondInline(const AllowedType& type) { allowedMore_.push_back(type); }

void clsOperand::ClearAllowedTypes() {
    allowedCount_ = 0;
    allowedMore_.clear();
}

std::vector<AllowedType> clsOperand::AllowedTypes() const {
    std::vector<AllowedType> all(allowed_.begin(), allowed_.begin() + static_cast<std::ptrdiff_t>(allowedCount_));
    all.insert(all.end(), allowedMore_.begin(), allowedMore_.end());
    return all;
}

// The latest call for a type decides: the field dialog allows and forbids
// floats again as the person moves between its tabs.
bool clsOperand::IsTypeAllowed(int32_t mode, int32_t operandType) const {
    for (auto a = allowedMore_.rbegin(); a != allowedMore_.rend(); ++a)
        if (a->Mode == mode && a->OperandType == operandType) return a->Allowed;
    for (size_t i = allowedCount_; i-- > 0;)
        if (allowed_[i].Mode == mode && allowed_[i].OperandType == operandType) return allowed_[i].Allowed;
    return false;
}

void clsOperand::SetConstantList(const std::vector<std::pair<int32_t, std::wstring>>& list, int32_t) {
    constantList_ = list;
}

std::wstring clsOperand::OperandDisplayName() const {
    if (address_ < 0) return L"";
    return clsOperandTypeNames().GetName(type_) + L" " + std::to_wstring(address_);
}

bool clsOperand::IsRegistered() const { return host().Operands.IsRegistered(type_, address_); }

void clsOperand::ReleaseOperand() { host().Operands.Release(type_, address_); }

void clsOperand::RegisterConstant() {
    host().Operands.RegisterConstant(address_, type_, constantValue_);
    host().Operands.Register(type_, address_, mode_, format_);
}

void clsOperand::RegisterOperand() { host().Operands.Register(type_, address_, mode_, format_); }

void clsOperand::EditOperand() {
    editCanceled_ = !host().Driver->PickOperand(*this);
    if (editCanceled_) return;
    // A choice made in the picker is a real link from now on.
    isNew_ = false;
    if (mode_ == 2) {
        // A constant gets a place in the host's constant table once.
        if (address_ < 0) AllocateConstantAddress(address_);
        RegisterConstant();
    } else {
        RegisterOperand();
    }
}

void clsOperand::AllocateConstantAddress(int32_t& address) { address = host().Operands.AllocateConstantAddress(); }

}  // namespace qx
