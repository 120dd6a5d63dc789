// The workbench's side of one family's instances (one instance is one named
// Config with its number and its data), as the ladder IDE keeps them. The
// host's own dialogs (the instance selection, the help) are callbacks, so
// that the window shows them and this class stays free of widgets.
#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/host/host_contract.h"
#include "project/project.h"

namespace qx {

class HostInstances : public itfFBInstances {
public:
    explicit HostInstances(int32_t fatherId) : fatherId_(fatherId) {}

    void AttachMethod(int32_t) override {}
    void GetInstances(bool& IsEmpty, std::vector<FBInstanceRecord>& Instances) override;
    void GetInstanceName(int32_t InstanceNum, std::wstring& InstanceName) override;
    void GetInstanceData(int32_t InstanceNum, Bytes& Data) override;
    void SetInstanceData(int32_t InstanceNum, Bytes& Data) override;
    void SelectInstance(itfFBMethod& Method) override;
    void AddInstance(FBInstanceRecord& Record) override;
    void DeleteInstance(int32_t InstanceNum) override;
    void UpdateInstance(FBInstanceRecord& Record) override;
    void ShowFBHelp(int32_t id) override;

    int32_t FatherID() const { return fatherId_; }
    // The instances as the project keeps them, by number; and back.
    std::vector<StoredInstance> Stored() const;
    void Restore(const std::vector<StoredInstance>& instances);

    // The host's instance selection dialog: a record chosen, or none when
    // the person cancelled. The workbench's window shows it.
    std::function<std::optional<int32_t>(const std::vector<FBInstanceRecord>&, int32_t current)> Choose;
    std::function<void(int32_t fatherId)> Help;
    // Called after every change of the instances, so that views follow.
    std::function<void()> Changed;

private:
    struct Instance {
        std::wstring Name;
        Bytes Data;
    };
    void changed() {
        if (Changed) Changed();
    }
    int32_t fatherId_;
    std::map<int32_t, Instance> instances_;
};

}  // namespace qx
