// The host's side of a family's instances, kept in memory: numbered, named
// Config instances with their instance data, and a record of the calls the
// library made. Tests, the CLI and the stand-alone host use it in place of
// the IDE.
#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/host/host_contract.h"

namespace qx {

class FBInstancesDouble : public itfFBInstances {
public:
    void AttachMethod(int32_t MethodID) override { AttachedMethods.push_back(MethodID); }
    void GetInstances(bool& IsEmpty, std::vector<FBInstanceRecord>& Instances) override;
    void GetInstanceName(int32_t InstanceNum, std::wstring& InstanceName) override;
    void GetInstanceData(int32_t InstanceNum, Bytes& Data) override;
    void SetInstanceData(int32_t InstanceNum, Bytes& Data) override;
    // Runs SelectScript when set, as the host's own dialog would.
    void SelectInstance(itfFBMethod& Method) override;
    void AddInstance(FBInstanceRecord& Record) override;
    void DeleteInstance(int32_t InstanceNum) override;
    void UpdateInstance(FBInstanceRecord& Record) override;
    void ShowFBHelp(int32_t id) override { HelpShown.push_back(id); }

    // Adds an instance directly, as an earlier session of the project would have; returns its number.
    int32_t Seed(const std::wstring& name, Bytes data = {});
    bool Has(int32_t InstanceNum) const { return instances_.count(InstanceNum) != 0; }
    size_t Count() const { return instances_.size(); }

    std::function<void(itfFBMethod&)> SelectScript;
    // When set, UpdateInstance moves the instance to this number (the host may renumber).
    int32_t RenumberOnUpdate = 0;
    std::vector<int32_t> AttachedMethods;
    std::vector<int32_t> HelpShown;
    std::vector<int32_t> Deleted;
    int32_t SelectCalls = 0;

private:
    struct Instance {
        std::wstring Name;
        Bytes Data;
    };
    std::map<int32_t, Instance> instances_;
    int32_t nextNumber_ = 1;
};

}  // namespace qx
