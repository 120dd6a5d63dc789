#include "host_instances.h"

#include <optional>

namespace qx {

void HostInstances::GetInstances(bool& IsEmpty, std::vector<FBInstanceRecord>& Instances) {
    Instances.clear();
    for (const auto& [number, instance] : instances_) Instances.push_back({number, instance.Name});
    IsEmpty = Instances.empty();
}

void HostInstances::GetInstanceName(int32_t InstanceNum, std::wstring& InstanceName) {
    const auto found = instances_.find(InstanceNum);
    InstanceName = found == instances_.end() ? L"" : found->second.Name;
}

void HostInstances::GetInstanceData(int32_t InstanceNum, Bytes& Data) {
    const auto found = instances_.find(InstanceNum);
    Data = found == instances_.end() ? Bytes{} : found->second.Data;
}

void HostInstances::SetInstanceData(int32_t InstanceNum, Bytes& Data) {
    const auto found = instances_.find(InstanceNum);
    if (found == instances_.end()) return;
    found->second.Data = Data;
    changed();
}

void HostInstances::SelectInstance(itfFBMethod& Method) {
    std::vector<FBInstanceRecord> records;
    bool empty = true;
    GetInstances(empty, records);
    const std::optional<int32_t> chosen =
        Choose ? Choose(records, Method.itfFBMethod_FatherInstanceNum()) : std::optional<int32_t>{};
    Method.itfFBMethod_IsCanceled(!chosen);
    if (chosen) Method.itfFBMethod_FatherInstanceNum(*chosen);
}

// A new instance takes the number after the highest, so that a number once
// given is not given again while its instance lives.
void HostInstances::AddInstance(FBInstanceRecord& Record) {
    const int32_t number = instances_.empty() ? 1 : instances_.rbegin()->first + 1;
    std::wstring name = L"Config" + std::to_wstring(number);
    instances_[number] = {name, {}};
    Record = {number, name};
    changed();
}

void HostInstances::DeleteInstance(int32_t InstanceNum) {
    if (instances_.erase(InstanceNum)) changed();
}

// The workbench keeps an instance's number when it is renamed.
void HostInstances::UpdateInstance(FBInstanceRecord& Record) {
    const auto found = instances_.find(Record.InstanceNum);
    if (found == instances_.end()) return;
    found->second.Name = Record.InstanceName;
    changed();
}

void HostInstances::ShowFBHelp(int32_t id) {
    if (Help) Help(id);
}

std::vector<StoredInstance> HostInstances::Stored() const {
    std::vector<StoredInstance> stored;
    for (const auto& [number, instance] : instances_)
        stored.push_back({fatherId_, number, instance.Name, instance.Data});
    return stored;
}

void HostInstances::Restore(const std::vector<StoredInstance>& instances) {
    instances_.clear();
    for (const StoredInstance& instance : instances)
        if (instance.FatherID == fatherId_) instances_[instance.InstanceNum] = {instance.Name, instance.Data};
    changed();
}

}  // namespace qx
