#include "platform/host/host_context.h"

#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"

namespace qx {

namespace {
HostContext*& current() {
    static HostContext* context = nullptr;
    return context;
}
}  // namespace

HostContext::HostContext() : Driver(std::make_shared<ScriptedModalDriver>()) {
#ifdef QXFB_DEFAULT_APP_FOLDER
    AppFolder = fromUtf8(QXFB_DEFAULT_APP_FOLDER);
#endif
}

ScriptedModalDriver* HostContext::Script() { return dynamic_cast<ScriptedModalDriver*>(Driver.get()); }

std::wstring HostContext::RuntimeFolder() const { return AppFolder + L"/../FB_Lib/RT/"; }

HostContext& host() {
    if (!current()) {
        // A process that never installed a context gets one for its lifetime.
        static HostContext fallback;
        current() = &fallback;
    }
    return *current();
}

ScopedHostContext::ScopedHostContext() : context_(std::make_unique<HostContext>()), previous_(current()) {
    current() = context_.get();
}

ScopedHostContext::~ScopedHostContext() { current() = previous_; }

bool OperandTable::IsRegistered(int32_t type, int32_t address) const { return Find(type, address) != nullptr; }

const OperandTable::Entry* OperandTable::Find(int32_t type, int32_t address) const {
    auto it = links_.find(linkKey(type, address));
    return it == links_.end() ? nullptr : &it->second;
}

void OperandTable::Register(int32_t type, int32_t address, int32_t mode, int32_t format) {
    auto& entry = links_[linkKey(type, address)];
    ++entry.Count;
    entry.Mode = mode;
    entry.Format = format;
}

void OperandTable::Release(int32_t type, int32_t address) {
    auto it = links_.find(linkKey(type, address));
    if (it == links_.end()) return;
    if (--it->second.Count <= 0) links_.erase(it);
}

void OperandTable::RegisterConstant(int32_t address, int32_t type, int64_t value) {
    constants_[address] = {type, value};
}

std::optional<int64_t> OperandTable::ConstantValue(int32_t address) const {
    auto it = constants_.find(address);
    if (it == constants_.end()) return std::nullopt;
    return it->second.second;
}

int32_t OperandTable::LinkCount(int32_t type, int32_t address) const {
    const Entry* entry = Find(type, address);
    return entry ? entry->Count : 0;
}

void ScriptedModalDriver::QueuePick(const OperandChoice& choice) {
    picks_.push_back([choice](clsOperand& operand) {
        operand.OperandMode(choice.Mode);
        operand.OperandType(choice.OperandType);
        operand.OperandAddress(choice.OperandAddress);
        operand.OperandNetID(choice.OperandNetID);
        operand.OperandDescription(choice.Description);
        operand.OperandConstantValue(choice.ConstantValue);
        return true;
    });
}

void ScriptedModalDriver::QueuePickCancel() {
    picks_.push_back([](clsOperand&) { return false; });
}

bool ScriptedModalDriver::PickOperand(clsOperand& operand) {
    if (picks_.empty()) return false;
    auto script = std::move(picks_.front());
    picks_.pop_front();
    return script(operand);
}

int32_t ScriptedModalDriver::AnswerMessage(const ShownMessage&) {
    if (answers_.empty()) return DefaultAnswer;
    int32_t answer = answers_.front();
    answers_.pop_front();
    return answer;
}

}  // namespace qx
