#include "platform/host/host_context.h"

#include <algorithm>
#include <utility>

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

int32_t HostContext::SubscribeCaret(std::function<void()> listener) {
    const int32_t token = nextCaretToken_++;
    caretListeners_.emplace_back(token, std::move(listener));
    return token;
}

void HostContext::UnsubscribeCaret(int32_t token) {
    std::erase_if(caretListeners_, [token](const auto& entry) { return entry.first == token; });
}

void HostContext::caretChanged() {
    // A copy, so that a listener may unsubscribe while told.
    const auto listeners = caretListeners_;
    for (const auto& [token, listener] : listeners)
        if (listener) listener();
}

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

namespace {

size_t linkHash(int32_t type, int32_t address) {
    const uint64_t key = (static_cast<uint64_t>(static_cast<uint32_t>(type)) << 32) | static_cast<uint32_t>(address);
    return static_cast<size_t>((key * 0x9E3779B97F4A7C15ULL) >> 20);
}

}  // namespace

const OperandTable::Slot* OperandTable::slotOf(int32_t type, int32_t address) const {
    if (slots_.empty()) return nullptr;
    const size_t mask = slots_.size() - 1;
    for (size_t i = linkHash(type, address) & mask;; i = (i + 1) & mask) {
        const Slot& slot = slots_[i];
        if (!slot.Used) return &slot;
        if (slot.Type == type && slot.Address == address) return &slot;
    }
}

OperandTable::Slot* OperandTable::slotOf(int32_t type, int32_t address) {
    return const_cast<Slot*>(std::as_const(*this).slotOf(type, address));
}

const OperandTable::Entry* OperandTable::Find(int32_t type, int32_t address) const {
    const Slot* slot = slotOf(type, address);
    return slot && slot->Used && slot->Link.Count > 0 ? &slot->Link : nullptr;
}

void OperandTable::Register(int32_t type, int32_t address, int32_t mode, int32_t format) {
    // At most half full, so that every search ends at a free slot soon.
    if (2 * (usedSlots_ + 1) > slots_.size()) {
        std::vector<Slot> old(std::max<size_t>(64, 2 * slots_.size()));
        old.swap(slots_);
        for (const Slot& slot : old)
            if (slot.Used) *slotOf(slot.Type, slot.Address) = slot;
    }
    Slot& slot = *slotOf(type, address);
    if (!slot.Used) {
        slot = Slot{type, address, true, Entry{}};
        ++usedSlots_;
    }
    ++slot.Link.Count;
    slot.Link.Mode = mode;
    slot.Link.Format = format;
}

void OperandTable::Release(int32_t type, int32_t address) {
    Slot* slot = slotOf(type, address);
    if (slot && slot->Used && slot->Link.Count > 0) --slot->Link.Count;
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

std::vector<OperandTable::Link> OperandTable::Links() const {
    std::vector<Link> links;
    for (const Slot& slot : slots_)
        if (slot.Used && slot.Link.Count > 0) links.push_back({slot.Type, slot.Address, slot.Link});
    std::sort(links.begin(), links.end(),
              [](const Link& a, const Link& b) { return std::pair(a.Type, a.Address) < std::pair(b.Type, b.Address); });
    return links;
}

void OperandTable::RestoreLink(int32_t type, int32_t address, const Entry& entry) {
    if (entry.Count <= 0) return;
    Register(type, address, entry.Mode, entry.Format);
    slotOf(type, address)->Link.Count = entry.Count;
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
