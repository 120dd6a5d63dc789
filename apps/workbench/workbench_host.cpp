#include "workbench_host.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_services.h"
#include "tcpip/mdl_eth_protocol.h"

namespace qx {

namespace {

std::vector<StoredOperand> storedOperands(const OperandCollectionPtr& operands) {
    std::vector<StoredOperand> stored;
    if (!operands) return stored;
    for (int32_t i = 1; i <= operands->Count(); ++i)
        stored.push_back(storeOperand(*operands->Item(i), operands->KeyAt(i)));
    return stored;
}

std::vector<StoredOperand> storedOperands(const std::vector<OperandPtr>& operands) {
    std::vector<StoredOperand> stored;
    for (const OperandPtr& operand : operands) stored.push_back(storeOperand(*operand, L""));
    return stored;
}

std::vector<OperandPtr> copiesOf(const std::vector<StoredOperand>& stored) {
    std::vector<OperandPtr> operands;
    for (const StoredOperand& each : stored) {
        operands.push_back(newOperand());
        restoreOperand(each, *operands.back());
    }
    return operands;
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

// The family whose instances hold an address table that names MIs, and the
// method number of a Config in every family.
constexpr int32_t TcpIpFamily = 170200;
constexpr int32_t ConfigMethod = 1;

using IdentityKey = std::tuple<int32_t, int32_t, int32_t>;  // net id, type, address

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
    // links its first edit made (the table is derived again without it) nor
    // the instance a new Config added.
    const auto drop = [&] {
        if (instances->Stored() != before) instances->Restore(before);
        SyncOperands();
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
    keepFindOnly(*operation);
    SyncOperands(operation.get());
    modified_ = true;
    return operation;
}

bool WorkbenchHost::EditOperation(const MethodPtr& operation) {
    operation->itfFBMethod_EditOperands();
    // A cancelled edit may still have linked and released on the way.
    const bool ok = !operation->itfFBMethod_IsCanceled();
    if (ok) keepFindOnly(*operation);
    SyncOperands(ok ? operation.get() : nullptr);
    if (ok) modified_ = true;
    return ok;
}

void WorkbenchHost::RemoveOperation(size_t net, size_t index) {
    if (net >= nets_.size() || index >= nets_[net].Operations.size()) return;
    const MethodPtr operation = nets_[net].Operations[index];
    findOnly_.erase(operation.get());
    nets_[net].Operations.erase(nets_[net].Operations.begin() + static_cast<std::ptrdiff_t>(index));
    // A Config's instance goes with it unless another operation still runs on it.
    const int32_t family = familyOf(operation->itfFBMethod_MethodID());
    const int32_t instance = operation->itfFBMethod_FatherInstanceNum();
    if (IsConfig(*operation) && instance != 0 && instances_.count(family) && UsersOfInstance(family, instance).empty())
        instances_.at(family)->DeleteInstance(instance);
    SyncOperands();
    modified_ = true;
}

bool WorkbenchHost::IsConfig(itfFBMethod& operation) { return operation.itfFBMethod_MethodID() % 100 == ConfigMethod; }

void WorkbenchHost::RemoveInstance(int32_t fatherId, int32_t instanceNum) {
    InstancesOf(fatherId).DeleteInstance(instanceNum);
    SyncOperands();
    modified_ = true;
}

std::vector<std::pair<size_t, size_t>> WorkbenchHost::UsersOfInstance(int32_t fatherId, int32_t instanceNum,
                                                                      std::pair<size_t, size_t> except) const {
    std::vector<std::pair<size_t, size_t>> users;
    for (size_t n = 0; n < nets_.size(); ++n)
        for (size_t i = 0; i < nets_[n].Operations.size(); ++i) {
            itfFBMethod& operation = *nets_[n].Operations[i];
            if (std::pair(n, i) != except && familyOf(operation.itfFBMethod_MethodID()) == fatherId &&
                operation.itfFBMethod_FatherInstanceNum() == instanceNum)
                users.emplace_back(n, i);
        }
    return users;
}

std::wstring WorkbenchHost::BlockName(size_t net, size_t place) const {
    return L"net " + std::to_wstring(net + 1) + L", block " + std::to_wstring(place + 1) + L" (" +
           nets_[net].Operations[place]->itfFBMethod_Title() + L")";
}

Project WorkbenchHost::ToProject() const {
    Project project;
    project.Settings.ExtendedOperands = context_->ExtendedOperands;
    project.Settings.Checksums = checksums_;
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
            if (const auto kept = findOnly_.find(operation.get()); kept != findOnly_.end())
                each.FindOnly = storedOperands(kept->second);
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
    for (const auto& [key, text] : descriptions_)
        project.Descriptions.push_back({std::get<0>(key), std::get<1>(key), std::get<2>(key), text});
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
    findOnly_[operation.get()] = copiesOf(stored.FindOnly);
    return operation;
}

void WorkbenchHost::Clear() {
    nets_.clear();
    foreignInstances_.clear();
    findOnly_.clear();
    descriptions_.clear();
    for (auto& [father, instances] : instances_) instances->Restore({});
    context_->Operands = OperandTable{};
    context_->ExtendedOperands = false;
    context_->AppFolder = componentAppFolder_;
    checksums_ = model::ChecksumTable::Default();
    modified_ = false;
}

std::vector<std::wstring> WorkbenchHost::Open(const Project& project, bool takeAppFolder) {
    std::vector<std::wstring> leftOut;
    Clear();
    context_->ExtendedOperands = project.Settings.ExtendedOperands;
    checksums_ = project.Settings.Checksums;
    if (takeAppFolder && !project.Settings.AppFolder.empty()) context_->AppFolder = project.Settings.AppFolder;
    for (auto& [father, instances] : instances_) instances->Restore(project.Instances);
    // Instances of a family this component does not have are kept as they are.
    for (const StoredInstance& instance : project.Instances)
        if (!instances_.count(instance.FatherID)) foreignInstances_.push_back(instance);
    restoreOperandTable(project, context_->Operands);
    for (const StoredDescription& description : project.Descriptions)
        descriptions_[{description.NetID, description.Type, description.Address}] = description.Text;
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
    SyncOperands();
    modified_ = false;
    return leftOut;
}

std::vector<WorkbenchHost::Problem> WorkbenchHost::CheckProject() const {
    // The method numbers of the operations whose image is a message set.
    constexpr int32_t ScanMethod = 2;
    constexpr int32_t SendMethod = 3;
    std::vector<Problem> problems;
    const auto blockName = [this](size_t n, size_t i) { return BlockName(n, i); };
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

std::vector<WorkbenchHost::Reference> WorkbenchHost::references() const {
    std::vector<Reference> found;
    for (size_t n = 0; n < nets_.size(); ++n)
        for (size_t i = 0; i < nets_[n].Operations.size(); ++i) {
            itfFBMethod& operation = *nets_[n].Operations[i];
            const auto add = [&](const OperandPtr& operand, Reference::Kind kind, bool counted) {
                if (!operand || operand->IsNew() || operand->OperandAddress() < 0) return;
                Reference reference{kind, {n, i}, {0, 0}, operand};
                reference.NetID = operand->OperandNetID();
                reference.Type = operand->OperandType();
                reference.Address = operand->OperandAddress();
                reference.Mode = operand->OperandMode();
                reference.Format = operand->OperandFormat();
                reference.VectorLength = std::max(1, operand->OperandVectorLength());
                reference.Counted = counted;
                found.push_back(std::move(reference));
            };
            for (const auto& operands : {operation.itfFBMethod_InOperands(), operation.itfFBMethod_OutOperands()})
                if (operands)
                    for (const OperandPtr& operand : *operands) add(operand, Reference::Kind::Link, true);
            const bool tcpipConfig = operation.itfFBMethod_MethodID() == TcpIpFamily + ConfigMethod;
            if (const auto kept = findOnly_.find(&operation); kept != findOnly_.end())
                for (const OperandPtr& operand : kept->second) add(operand, Reference::Kind::FindOnly, !tcpipConfig);
        }
    if (const auto tcpip = instances_.find(TcpIpFamily); tcpip != instances_.end())
        for (const StoredInstance& instance : tcpip->second->Stored()) {
            std::vector<AddressTableOperand> operands;
            // Data that is no address table names nothing; the Config's
            // dialog says what is wrong with it when it is opened.
            try {
                operands = AddressTableOperands(instance.Data);
            } catch (const RuntimeError&) {
            }
            for (const AddressTableOperand& operand : operands) {
                Reference reference{Reference::Kind::Instance, {0, 0}, {TcpIpFamily, instance.InstanceNum}, nullptr};
                reference.Type = 3;  // MI, as memory
                reference.Address = operand.Address;
                reference.VectorLength = operand.VectorLength;
                found.push_back(std::move(reference));
            }
        }
    return found;
}

void WorkbenchHost::keepFindOnly(itfFBMethod& operation) {
    std::vector<OperandPtr>& kept = findOnly_[&operation];
    kept.clear();
    if (const OperandCollectionPtr listed = operation.itfFBMethod_OperandsForFindOnly())
        for (const OperandPtr& operand : *listed)
            if (operand) kept.push_back(copiesOf({storeOperand(*operand, L"")}).front());
}

void WorkbenchHost::SyncOperands(const itfFBMethod* edited) {
    const std::vector<Reference> found = references();
    std::map<IdentityKey, std::wstring> words;
    // What the person wrote in the edit just ended: on its links as they
    // stand (an emptied description included), in its image where given.
    if (edited)
        for (const Reference& reference : found)
            if (reference.Operand && &*nets_[reference.Place.first].Operations[reference.Place.second] == edited &&
                (reference.Of == Reference::Kind::Link || !reference.Operand->OperandDescription().empty()))
                words[{reference.NetID, reference.Type, reference.Address}] = reference.Operand->OperandDescription();
    // Then what the host knew, then the words any other operand carries.
    for (const Reference& reference : found) {
        const IdentityKey key{reference.NetID, reference.Type, reference.Address};
        if (words.count(key)) continue;
        if (const auto known = descriptions_.find(key); known != descriptions_.end())
            words[key] = known->second;
        else if (reference.Operand && !reference.Operand->OperandDescription().empty())
            words[key] = reference.Operand->OperandDescription();
    }
    descriptions_.clear();
    for (auto& [key, text] : words)
        if (!text.empty()) descriptions_.emplace(key, std::move(text));
    // Every operand object says what the host says, so that no stale
    // description comes back from one of them later.
    // One link for each block or instance that names the identity.
    std::map<std::pair<int32_t, int32_t>, OperandTable::Entry> entries;
    std::set<std::tuple<int32_t, int32_t, size_t, size_t>> holders;  // type, address, holder
    for (const Reference& reference : found) {
        if (reference.Operand)
            reference.Operand->OperandDescription(Description(reference.NetID, reference.Type, reference.Address));
        if (!reference.Counted) continue;
        const auto holder = reference.Of == Reference::Kind::Instance
                                ? std::pair<size_t, size_t>(SIZE_MAX - static_cast<size_t>(reference.Instance.first),
                                                            static_cast<size_t>(reference.Instance.second))
                                : reference.Place;
        if (!holders.emplace(reference.Type, reference.Address, holder.first, holder.second).second) continue;
        OperandTable::Entry& entry = entries[{reference.Type, reference.Address}];
        ++entry.Count;
        entry.Mode = reference.Mode;
        entry.Format = reference.Format;
    }
    OperandTable& table = context_->Operands;
    table.ClearLinks();
    for (const auto& [key, entry] : entries) table.RestoreLink(key.first, key.second, entry);
}

std::wstring WorkbenchHost::Description(int32_t netId, int32_t type, int32_t address) const {
    const auto found = descriptions_.find({netId, type, address});
    return found == descriptions_.end() ? std::wstring() : found->second;
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
    for (const Reference& reference : references()) {
        OperandUse& use = useOf(reference.NetID, reference.Type, reference.Address);
        use.Mode = reference.Mode;
        use.VectorLength = std::max(use.VectorLength, reference.VectorLength);
        if (reference.Of == Reference::Kind::Instance) {
            if (use.Instances.empty() || use.Instances.back() != reference.Instance)
                use.Instances.push_back(reference.Instance);
            continue;
        }
        auto& places = reference.Of == Reference::Kind::FindOnly ? use.FindOnly : use.Links;
        if (places.empty() || places.back() != reference.Place) places.push_back(reference.Place);
    }
    std::vector<OperandUse> all;
    for (auto& [key, use] : uses) {
        use.Description = Description(use.NetID, use.Type, use.Address);
        all.push_back(std::move(use));
    }
    return all;
}

WorkbenchHost::Moved WorkbenchHost::MoveOperand(int32_t netId, int32_t type, int32_t address, int32_t newAddress) {
    if (newAddress == address) return {};
    const std::vector<OperandUse> uses = OperandUses();
    const auto name = [type](int32_t at) {
        return toUtf8(clsOperandTypeNames().GetName(type)) + " " + std::to_string(at);
    };
    const auto moving = std::find_if(uses.begin(), uses.end(), [&](const OperandUse& use) {
        return use.NetID == netId && use.Type == type && use.Address == address;
    });
    const int32_t span = moving == uses.end() ? 1 : moving->VectorLength;
    const std::string what = name(address) + (span > 1 ? " (" + std::to_string(span) + " addresses)" : "");
    if (newAddress < 0 || newAddress + span - 1 > 0xFFFF)
        throw std::invalid_argument(what + " cannot move to " + std::to_string(newAddress) +
                                    ": the addresses of its type end at 65535.");
    // Memory operands of the same type whose spans would overlap.
    for (const OperandUse& other : uses) {
        if (other.Type != type || other.Mode != 1 || (other.NetID == netId && other.Address == address)) continue;
        if (newAddress < other.Address + other.VectorLength && other.Address < newAddress + span) {
            std::string users;
            for (const auto& [n, i] : other.Links.empty() ? other.FindOnly : other.Links)
                if (users.empty()) users = toUtf8(BlockName(n, i));
            for (const auto& [family, number] : other.Instances)
                if (users.empty()) {
                    std::wstring instanceName;
                    instances_.at(family)->GetInstanceName(number, instanceName);
                    users = "the instance " + std::to_string(number) + " (" + toUtf8(instanceName) + ")";
                }
            throw std::invalid_argument(
                what + " cannot move to " + std::to_string(newAddress) + ": it would overlap " + name(other.Address) +
                (other.VectorLength > 1 ? " (" + std::to_string(other.VectorLength) + " addresses)" : "") +
                (users.empty() ? "" : ", which " + users + " uses") + ".");
        }
    }
    Moved moved;
    for (size_t n = 0; n < nets_.size(); ++n)
        for (size_t i = 0; i < nets_[n].Operations.size(); ++i) {
            itfFBMethod& operation = *nets_[n].Operations[i];
            bool changed = false;
            // Links, the operation's list of its image and the host's copy of
            // that list all follow, whether or not the command reached the image.
            const auto follow = [&](const auto& operands) {
                for (const OperandPtr& operand : operands)
                    if (operand && !operand->IsNew() && operand->OperandMode() == 1 &&
                        operand->OperandNetID() == netId && operand->OperandType() == type &&
                        operand->OperandAddress() == address) {
                        operand->OperandAddress(newAddress);
                        changed = true;
                    }
            };
            for (const auto& operands : {operation.itfFBMethod_InOperands(), operation.itfFBMethod_OutOperands(),
                                         operation.itfFBMethod_OperandsForFindOnly()})
                if (operands) follow(*operands);
            if (const auto kept = findOnly_.find(&operation); kept != findOnly_.end()) follow(kept->second);
            // Every operation hears the command; those whose image names the
            // operand change it, the others ignore it.
            const Bytes before = operation.itfFBMethod_BinaryOperands();
            VariantArray command{Variant(L"ReplaceFindOnlyOperand"), Variant(netId), Variant(type), Variant(address),
                                 Variant(newAddress)};
            operation.itfFBMethod_Execute(command);
            if (changed || operation.itfFBMethod_BinaryOperands() != before) moved.Operations.emplace_back(n, i);
        }
    // The address tables of the TCP/IP instances, and the Configs that keep
    // a copy of their instance's data.
    if (const auto tcpip = instances_.find(TcpIpFamily); tcpip != instances_.end() && netId == 0 && type == 3)
        for (StoredInstance& instance : tcpip->second->Stored()) {
            Bytes data = instance.Data;
            int32_t count = 0;
            try {
                count = ReplaceAddressTableOperand(data, address, newAddress);
            } catch (const RuntimeError&) {
            }
            if (count == 0) continue;
            tcpip->second->SetInstanceData(instance.InstanceNum, data);
            moved.Instances.emplace_back(TcpIpFamily, instance.InstanceNum);
            for (const auto& [n, i] : UsersOfInstance(TcpIpFamily, instance.InstanceNum))
                nets_[n].Operations[i]->itfFBMethod_FatherInstanceNum(instance.InstanceNum);
        }
    if (const auto described = descriptions_.find({netId, type, address}); described != descriptions_.end()) {
        descriptions_[{netId, type, newAddress}] = described->second;
        descriptions_.erase({netId, type, address});
    }
    SyncOperands();
    if (!moved.Operations.empty() || !moved.Instances.empty()) modified_ = true;
    return moved;
}

}  // namespace qx
