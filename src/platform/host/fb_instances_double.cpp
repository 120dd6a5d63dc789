#include "platform/host/fb_instances_double.h"

namespace qx {

void FBInstancesDouble::GetInstances(bool& IsEmpty, std::vector<FBInstanceRecord>& Instances) {
    Instances.clear();
    for (const auto& [number, instance] : instances_) Instances.push_back({number, instance.Name});
    IsEmpty = Instances.empty();
}

void FBInstancesDouble::GetInstanceName(int32_t InstanceNum, std::wstring& InstanceName) {
    auto it = instances_.find(InstanceNum);
    InstanceName = it == instances_.end() ? L"" : it->second.Name;
}

void FBInstancesDouble::GetInstanceData(int32_t InstanceNum, Bytes& Data) {
    auto it = instances_.find(InstanceNum);
    Data = it == instances_.end() ? Bytes{} : it->second.Data;
}

void FBInstancesDouble::SetInstanceData(int32_t InstanceNum, Bytes& Data) {
    auto it = instances_.find(InstanceNum);
    if (it != instances_.end()) it->second.Data = Data;
}

void FBInstancesDouble::SelectInstance(itfFBMethod& Method) {
    ++SelectCalls;
    if (SelectScript) SelectScript(Method);
}

void FBInstancesDouble::AddInstance(FBInstanceRecord& Record) {
    int32_t number = nextNumber_++;
    std::wstring name = L"Config" + std::to_wstring(number);
    instances_[number] = {name, {}};
    Record = {number, name};
}

void FBInstancesDouble::DeleteInstance(int32_t InstanceNum) {
    instances_.erase(InstanceNum);
    Deleted.push_back(InstanceNum);
}

void FBInstancesDouble::UpdateInstance(FBInstanceRecord& Record) {
    auto it = instances_.find(Record.InstanceNum);
    if (it == instances_.end()) return;
    it->second.Name = Record.InstanceName;
    if (RenumberOnUpdate > 0 && RenumberOnUpdate != Record.InstanceNum) {
        instances_[RenumberOnUpdate] = it->second;
        instances_.erase(it);
        Record.InstanceNum = RenumberOnUpdate;
        if (nextNumber_ <= RenumberOnUpdate) nextNumber_ = RenumberOnUpdate + 1;
    }
}

int32_t FBInstancesDouble::Seed(const std::wstring& name, Bytes data) {
    int32_t number = nextNumber_++;
    instances_[number] = {name, std::move(data)};
    return number;
}

}  // namespace qx
