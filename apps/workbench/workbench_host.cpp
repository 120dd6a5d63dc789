#include "workbench_host.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_services.h"

namespace qx {

namespace {

std::vector<StoredOperand> storedOperands(const OperandCollectionPtr& operands) {
    std::vector<StoredOperand> stored;
    if (!operands) return stored;
    for (int32_t i = 1; i <= operands->Count(); ++i)
        stored.push_back(storeOperand(*operands->Item(i), operands->KeyAt(i)));
    return stored;
}

// The host's own copies of the links, which it gives the reopened operation.
OperandCollectionPtr operandsOf(const std::vector<StoredOperand>& stored) {
    auto operands = std::make_shared<OperandCollection>();
    for (const StoredOperand& each : stored) {
        OperandPtr operand = newOperand();
        restoreOperand(each, *operand);
        // BuildOperands gives the allowed types back, as after any reopen.
        operand->ClearAllowedTypes();
        operands->Add(operand, each.Key);
    }
    return operands;
}

}  // namespace

WorkbenchHost::WorkbenchHost(LoadedComponent& component) : context_(component.Context ? component.Context() : nullptr) {
    if (!context_) throw std::runtime_error("the component gave no host context");
    componentAppFolder_ = context_->AppFolder;
    gate_ = component.Create<itfFBGate>(L"QxFBCom2.clsGate");
    if (!gate_) throw std::runtime_error(component.Error());
    FatherCollectionPtr fathers = gate_->itfFBGate_GetFathersCollection();
    for (int32_t i = 1; i <= fathers->Count(); ++i) {
        families_.push_back(fathers->Item(i));
        const int32_t id = families_.back()->itfFBFather_FatherID();
        instances_[id] = std::make_shared<HostInstances>(id);
    }
}

WorkbenchHost::~WorkbenchHost() = default;

FatherPtr WorkbenchHost::Family(int32_t fatherId) const {
    for (const FatherPtr& family : families_)
        if (family->itfFBFather_FatherID() == fatherId) return family;
    return nullptr;
}

HostInstances& WorkbenchHost::InstancesOf(int32_t fatherId) { return *instances_.at(fatherId); }

size_t WorkbenchHost::AddNet(const std::wstring& comment) {
    nets_.push_back(Net{comment, {}, {}});
    modified_ = true;
    return nets_.size() - 1;
}

MethodPtr WorkbenchHost::PlaceOperation(size_t net, int32_t methodId) {
    if (net >= nets_.size()) return nullptr;
    const FatherPtr family = Family(familyOf(methodId));
    if (!family) return nullptr;
    MethodPtr operation = family->itfFBFather_GetFBMethodObject(methodId);
    if (!operation) return nullptr;
    const std::shared_ptr<HostInstances>& instances = instances_.at(family->itfFBFather_FatherID());
    const std::vector<StoredInstance> before = instances->Stored();
    // A new operation that is not placed leaves nothing behind: neither the
    // links its first edit made nor the instance a new Config added.
    const auto drop = [&] {
        releaseLinks(*operation);
        if (instances->Stored() != before) instances->Restore(before);
    };
    try {
        operation->itfFBMethod_Init(instances);
        operation->itfFBMethod_CreateDummyOperands();
        operation->itfFBMethod_BuildOperands();
        operation->itfFBMethod_EditOperands();
    } catch (...) {
        drop();
        throw;
    }
    if (operation->itfFBMethod_IsCanceled()) {
        drop();
        return nullptr;
    }
    nets_[net].Operations.push_back(operation);
    modified_ = true;
    return operation;
}

bool WorkbenchHost::EditOperation(const MethodPtr& operation) {
    operation->itfFBMethod_EditOperands();
    if (operation->itfFBMethod_IsCanceled()) return false;
    modified_ = true;
    return true;
}

// The links leave the host's table. The table is the component's: this
// program's own copy of the operand code would reach the table of this
// program's context, so the operands are not asked to release themselves.
void WorkbenchHost::releaseLinks(itfFBMethod& operation) {
    for (const auto& operands : {operation.itfFBMethod_InOperands(), operation.itfFBMethod_OutOperands()})
        if (operands)
            for (const OperandPtr& operand : *operands)
                if (operand && !operand->IsNew())
                    context_->Operands.Release(operand->OperandType(), operand->OperandAddress());
}

void WorkbenchHost::RemoveOperation(size_t net, size_t index) {
    if (net >= nets_.size() || index >= nets_[net].Operations.size()) return;
    releaseLinks(*nets_[net].Operations[index]);
    nets_[net].Operations.erase(nets_[net].Operations.begin() + static_cast<std::ptrdiff_t>(index));
    modified_ = true;
}

Project WorkbenchHost::ToProject() const {
    Project project;
    project.Settings.ExtendedOperands = context_->ExtendedOperands;
    // The component's own folder is not pinned into the project: it moves
    // with the component.
    if (context_->AppFolder != componentAppFolder_) project.Settings.AppFolder = context_->AppFolder;
    for (const Net& net : nets_) {
        LadderNet stored{net.Comment, {}};
        for (const MethodPtr& operation : net.Operations) {
            StoredOperation each;
            each.MethodID = operation->itfFBMethod_MethodID();
            each.HexFileVersion = operation->itfFBMethod_HexFileVersion();
            each.FatherInstanceNum = operation->itfFBMethod_FatherInstanceNum();
            each.IsConducting = operation->itfFBMethod_IsConducting();
            each.BinaryOperands = operation->itfFBMethod_BinaryOperands();
            each.InOperands = storedOperands(operation->itfFBMethod_InOperands());
            each.OutOperands = storedOperands(operation->itfFBMethod_OutOperands());
            stored.Operations.push_back(std::move(each));
        }
        stored.Operations.insert(stored.Operations.end(), net.Unopened.begin(), net.Unopened.end());
        project.Nets.push_back(std::move(stored));
    }
    for (const auto& [father, instances] : instances_)
        for (StoredInstance& instance : instances->Stored()) project.Instances.push_back(std::move(instance));
    project.Instances.insert(project.Instances.end(), foreignInstances_.begin(), foreignInstances_.end());
    std::sort(project.Instances.begin(), project.Instances.end(), [](const StoredInstance& a, const StoredInstance& b) {
        return std::pair(a.FatherID, a.InstanceNum) < std::pair(b.FatherID, b.InstanceNum);
    });
    storeOperandTable(context_->Operands, project);
    return project;
}

MethodPtr WorkbenchHost::reopen(const StoredOperation& stored) {
    const FatherPtr family = Family(stored.FatherID());
    MethodPtr operation = family ? family->itfFBFather_GetFBMethodObject(stored.MethodID) : nullptr;
    if (!operation) return nullptr;
    operation->itfFBMethod_Init(instances_.at(stored.FatherID()));
    operation->itfFBMethod_InOperands(operandsOf(stored.InOperands));
    operation->itfFBMethod_OutOperands(operandsOf(stored.OutOperands));
    operation->itfFBMethod_BinaryOperands(stored.BinaryOperands);
    operation->itfFBMethod_HexFileVersion(stored.HexFileVersion);
    operation->itfFBMethod_FatherInstanceNum(stored.FatherInstanceNum);
    operation->itfFBMethod_IsConducting(stored.IsConducting);
    operation->itfFBMethod_BuildOperands();
    return operation;
}

void WorkbenchHost::Clear() {
    nets_.clear();
    foreignInstances_.clear();
    for (auto& [father, instances] : instances_) instances->Restore({});
    context_->Operands = OperandTable{};
    context_->ExtendedOperands = false;
    context_->AppFolder = componentAppFolder_;
    modified_ = false;
}

std::vector<std::wstring> WorkbenchHost::Open(const Project& project, bool takeAppFolder) {
    std::vector<std::wstring> leftOut;
    Clear();
    context_->ExtendedOperands = project.Settings.ExtendedOperands;
    if (takeAppFolder && !project.Settings.AppFolder.empty()) context_->AppFolder = project.Settings.AppFolder;
    for (auto& [father, instances] : instances_) instances->Restore(project.Instances);
    // Instances of a family this component does not have are kept as they are.
    for (const StoredInstance& instance : project.Instances)
        if (!instances_.count(instance.FatherID)) foreignInstances_.push_back(instance);
    restoreOperandTable(project, context_->Operands);
    for (const LadderNet& stored : project.Nets) {
        Net net{stored.Comment, {}, {}};
        for (const StoredOperation& operation : stored.Operations) {
            const std::wstring where =
                L"net " + std::to_wstring(nets_.size() + 1) + L": operation " + std::to_wstring(operation.MethodID);
            try {
                if (MethodPtr reopened = reopen(operation)) {
                    net.Operations.push_back(std::move(reopened));
                    continue;
                }
                leftOut.push_back(where + L" is unknown to the component");
            } catch (const RuntimeError& e) {
                leftOut.push_back(where + L" could not be reopened: " + e.Description());
            }
            // Kept as stored, so that saving gives it back.
            net.Unopened.push_back(operation);
        }
        nets_.push_back(std::move(net));
    }
    modified_ = false;
    return leftOut;
}

std::vector<WorkbenchHost::Problem> WorkbenchHost::CheckProject() const {
    // The method numbers of the operations whose image is a message set.
    constexpr int32_t ScanMethod = 2;
    constexpr int32_t SendMethod = 3;
    std::vector<Problem> problems;
    const auto blockName = [this](size_t n, size_t i) {
        return L"net " + std::to_wstring(n + 1) + L", block " + std::to_wstring(i + 1) + L" (" +
               nets_[n].Operations[i]->itfFBMethod_Title() + L")";
    };
    // The first block that writes each memory operand, by type and address.
    std::map<std::pair<int32_t, int32_t>, std::pair<size_t, size_t>> writers;
    for (size_t n = 0; n < nets_.size(); ++n)
        for (size_t i = 0; i < nets_[n].Operations.size(); ++i) {
            itfFBMethod& operation = *nets_[n].Operations[i];
            const std::wstring block = blockName(n, i);
            const int32_t method = operation.itfFBMethod_MethodID() % 100;
            if ((method == ScanMethod || method == SendMethod) && operation.itfFBMethod_BinaryOperands().empty())
                problems.push_back({n, i, block + L" has no messages: open it and confirm its dialog with OK"});
            const int32_t instance = operation.itfFBMethod_FatherInstanceNum();
            const auto family = instances_.find(familyOf(operation.itfFBMethod_MethodID()));
            bool instanceKnown = false;
            if (family != instances_.end())
                for (const StoredInstance& stored : family->second->Stored())
                    instanceKnown = instanceKnown || stored.InstanceNum == instance;
            if (instance == 0)
                problems.push_back({n, i, block + L" has no Config instance"});
            else if (!instanceKnown)
                problems.push_back(
                    {n, i, block + L" names Config instance " + std::to_wstring(instance) + L", which is gone"});
            for (const auto& operands : {operation.itfFBMethod_InOperands(), operation.itfFBMethod_OutOperands()}) {
                if (!operands) continue;
                for (int32_t k = 1; k <= operands->Count(); ++k) {
                    const OperandPtr& operand = operands->Item(k);
                    if (operand && operand->IsNew())
                        problems.push_back(
                            {n, i, block + L": the operand \"" + operand->OperandCaption() + L"\" is not linked"});
                }
            }
            if (const OperandCollectionPtr out = operation.itfFBMethod_OutOperands())
                for (int32_t k = 1; k <= out->Count(); ++k) {
                    const OperandPtr& operand = out->Item(k);
                    if (!operand || operand->IsNew() || operand->OperandMode() != 1) continue;
                    const std::pair key(operand->OperandType(), operand->OperandAddress());
                    const auto [first, added] = writers.emplace(key, std::pair(n, i));
                    if (!added && first->second != std::pair(n, i))
                        problems.push_back({n, i,
                                            block + L" writes " + clsOperandTypeNames().GetName(key.first) + L" " +
                                                std::to_wstring(key.second) + L", which " +
                                                blockName(first->second.first, first->second.second) + L" writes too"});
                }
        }
    return problems;
}

std::vector<WorkbenchHost::OperandUse> WorkbenchHost::OperandUses() const {
    std::map<std::tuple<int32_t, int32_t, int32_t>, OperandUse> uses;
    auto useOf = [&uses](int32_t netId, int32_t type, int32_t address) -> OperandUse& {
        OperandUse& use = uses[{type, address, netId}];
        use.NetID = netId;
        use.Type = type;
        use.Address = address;
        return use;
    };
    for (const OperandTable::Link& link : context_->Operands.Links()) {
        OperandUse& use = useOf(0, link.Type, link.Address);
        use.LinkCount = link.Link.Count;
        use.Mode = link.Link.Mode;
    }
    for (size_t n = 0; n < nets_.size(); ++n)
        for (size_t i = 0; i < nets_[n].Operations.size(); ++i) {
            itfFBMethod& operation = *nets_[n].Operations[i];
            auto note = [&](const OperandCollectionPtr& operands, bool findOnly) {
                if (!operands) return;
                for (const OperandPtr& operand : *operands) {
                    if (!operand || operand->IsNew()) continue;
                    OperandUse& use = useOf(operand->OperandNetID(), operand->OperandType(), operand->OperandAddress());
                    use.Mode = operand->OperandMode();
                    if (use.Description.empty()) use.Description = operand->OperandDescription();
                    auto& places = findOnly ? use.FindOnly : use.Links;
                    if (places.empty() || places.back() != std::pair(n, i)) places.emplace_back(n, i);
                }
            };
            note(operation.itfFBMethod_InOperands(), false);
            note(operation.itfFBMethod_OutOperands(), false);
            note(operation.itfFBMethod_OperandsForFindOnly(), true);
        }
    std::vector<OperandUse> all;
    for (auto& [key, use] : uses) all.push_back(std::move(use));
    return all;
}

std::vector<std::pair<size_t, size_t>> WorkbenchHost::MoveOperand(int32_t netId, int32_t type, int32_t address,
                                                                  int32_t newAddress) {
    OperandTable& table = context_->Operands;
    if (newAddress == address) return {};
    if (table.IsRegistered(type, newAddress))
        throw std::invalid_argument(toUtf8(clsOperandTypeNames().GetName(type)) + " " + std::to_string(address) +
                                    " cannot move to " + std::to_string(newAddress) +
                                    ": that address is in use already.");
    if (const OperandTable::Entry* entry = table.Find(type, address)) {
        const OperandTable::Entry moved = *entry;
        for (int32_t i = 0; i < moved.Count; ++i) table.Release(type, address);
        table.RestoreLink(type, newAddress, moved);
    }
    std::vector<std::pair<size_t, size_t>> changed;
    for (size_t n = 0; n < nets_.size(); ++n)
        for (size_t i = 0; i < nets_[n].Operations.size(); ++i) {
            itfFBMethod& operation = *nets_[n].Operations[i];
            bool linked = false;
            for (const auto& operands : {operation.itfFBMethod_InOperands(), operation.itfFBMethod_OutOperands()})
                if (operands)
                    for (const OperandPtr& operand : *operands)
                        if (operand && !operand->IsNew() && operand->OperandMode() == 1 &&
                            operand->OperandNetID() == netId && operand->OperandType() == type &&
                            operand->OperandAddress() == address) {
                            operand->OperandAddress(newAddress);
                            linked = true;
                        }
            // Every operation hears the command; those whose image names the
            // operand change it, the others ignore it.
            const Bytes before = operation.itfFBMethod_BinaryOperands();
            VariantArray command{Variant(L"ReplaceFindOnlyOperand"), Variant(netId), Variant(type), Variant(address),
                                 Variant(newAddress)};
            operation.itfFBMethod_Execute(command);
            if (linked || operation.itfFBMethod_BinaryOperands() != before) changed.emplace_back(n, i);
        }
    return changed;
}

}  // namespace qx
