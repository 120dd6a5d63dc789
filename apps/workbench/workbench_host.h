// The workbench as a host of the component, without its window: the
// families from the gate, the project's ladder nets with their operations,
// each family's instances, and the roads the ladder IDE drives an operation
// along (new, reopened, edited again, saved). The window shows this and
// calls it; tests drive it the same way.
//
// The component carries its own copy of the host's services, and this
// program another: an operand member that reaches them (ReleaseOperand,
// RegisterOperand, IsRegistered, EditOperand) would, called from here, reach
// this program's context instead of the component's. The workbench reaches
// the host's table through Context() alone.
#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "component_loader.h"
#include "host_instances.h"
#include "platform/host/host_context.h"
#include "project/project.h"

namespace qx {

// The family of an operation: its MethodID without the method number.
inline int32_t familyOf(int32_t methodId) { return methodId / 100 * 100; }

class WorkbenchHost {
public:
    struct Net {
        std::wstring Comment;
        std::vector<MethodPtr> Operations;
        // Operations of the file that could not be reopened, kept as stored
        // and saved again behind the others.
        std::vector<StoredOperation> Unopened;
    };

    // Creates the gate of a loaded component and takes its families.
    // Throws std::runtime_error when the component gives no gate.
    explicit WorkbenchHost(LoadedComponent& component);
    ~WorkbenchHost();

    // The component's own host context: its settings, operand table and driver.
    HostContext& Context() { return *context_; }
    itfFBGate& Gate() { return *gate_; }
    const std::vector<FatherPtr>& Families() const { return families_; }
    FatherPtr Family(int32_t fatherId) const;
    // The instances of one of the gate's families (std::out_of_range for another).
    HostInstances& InstancesOf(int32_t fatherId);
    const std::map<int32_t, std::shared_ptr<HostInstances>>& AllInstances() const { return instances_; }

    std::vector<Net>& Nets() { return nets_; }
    size_t AddNet(const std::wstring& comment = L"");

    // A new operation at the end of the net: GetFBMethodObject, Init,
    // CreateDummyOperands, BuildOperands, EditOperands. Dropped (nullptr)
    // when that first edit is cancelled or the MethodID is unknown.
    MethodPtr PlaceOperation(size_t net, int32_t methodId);
    // Edited again; true when the edit ended with OK.
    bool EditOperation(const MethodPtr& operation);
    // Removes the operation and releases its links. A Config takes its
    // instance with it when no other operation uses that instance.
    void RemoveOperation(size_t net, size_t index);
    // Whether the operation is its family's Config, the one that owns an instance.
    static bool IsConfig(itfFBMethod& operation);
    // Deletes an instance no operation uses any longer.
    void RemoveInstance(int32_t fatherId, int32_t instanceNum);
    // The operations other than `except` that run on a family's instance.
    std::vector<std::pair<size_t, size_t>> UsersOfInstance(int32_t fatherId, int32_t instanceNum,
                                                           std::pair<size_t, size_t> except = {SIZE_MAX,
                                                                                               SIZE_MAX}) const;
    // "net 2, block 3 (Send)": a block named so that no two are alike.
    std::wstring BlockName(size_t net, size_t place) const;

    // One operand identity and what names it: operations by a link in
    // their InOperands or OutOperands, or inside their image as their
    // OperandsForFindOnly list it, and instances inside their data (the
    // TCP/IP address table).
    struct OperandUse {
        int32_t NetID = 0;
        int32_t Type = 0;
        int32_t Address = 0;
        int32_t Mode = 1;
        int32_t LinkCount = 0;  // in the host's operand table
        // How many addresses from Address on it takes (an IP's four MIs).
        int32_t VectorLength = 1;
        std::wstring Description;
        std::vector<std::pair<size_t, size_t>> Links;        // net, place
        std::vector<std::pair<size_t, size_t>> FindOnly;     // net, place
        std::vector<std::pair<int32_t, int32_t>> Instances;  // family, instance number
    };
    // Every identity of the host's table, the operations and the instances,
    // by type and address.
    std::vector<OperandUse> OperandUses() const;

    // The host's operand table derived anew from what the operations and
    // instances name, one link for each time, so that a link nothing holds
    // any longer is gone; and the host's descriptions, of which those the
    // person gave in the edit of `edited` win. Runs after every change.
    void SyncOperands(const itfFBMethod* edited = nullptr);
    // The host's description of an identity, empty when it has none.
    std::wstring Description(int32_t netId, int32_t type, int32_t address) const;

    // Moves a memory operand to another address of its type: the host's
    // table, every link that names it, every image through the command
    // "ReplaceFindOnlyOperand", and every TCP/IP address table that names
    // it. Throws std::invalid_argument, changing nothing, when the span of
    // the operand at the new address would overlap another operand.
    struct Moved {
        std::vector<std::pair<size_t, size_t>> Operations;   // net, place
        std::vector<std::pair<int32_t, int32_t>> Instances;  // family, instance number
    };
    Moved MoveOperand(int32_t netId, int32_t type, int32_t address, int32_t newAddress);

    // What would keep a block from working on the controller, found before
    // a download: a Send or Scan without messages (its image is empty), an
    // operand not linked, an operation without its Config instance, and an
    // operand that two blocks both write. Net and place of the block the
    // problem is about; Text names it in words.
    struct Problem {
        size_t Net = 0;
        size_t Place = 0;
        std::wstring Text;
    };
    std::vector<Problem> CheckProject() const;

    // The whole project as the file keeps it, and back: a reopen is
    // GetFBMethodObject, Init, the Lets of the stored blocks, BuildOperands.
    Project ToProject() const;
    // Returns what could not be reopened (an operation of a family this
    // component does not have, or one the component refused), one line each;
    // those are kept as stored (Net::Unopened) and saved again. The
    // application folder a project names decides which runtime code goes to
    // the controller, so it is taken only when the caller says so (after
    // asking the person); otherwise the component's own stays.
    std::vector<std::wstring> Open(const Project& project, bool takeAppFolder = false);
    // The application folder the component started with.
    const std::wstring& ComponentAppFolder() const { return componentAppFolder_; }
    void Clear();

    // What the checksum codes stand for in the runtime model's panes.
    const model::ChecksumTable& Checksums() const { return checksums_; }
    void Checksums(const model::ChecksumTable& table) { checksums_ = table; }

    // Unsaved changes since the last Open, Clear or MarkSaved.
    bool Modified() const { return modified_; }
    void MarkSaved() { modified_ = false; }
    void MarkModified() { modified_ = true; }

private:
    // One place that names an operand identity, with the operand object
    // there is one (links and find-only operands).
    struct Reference {
        enum class Kind { Link, FindOnly, Instance } Of = Kind::Link;
        std::pair<size_t, size_t> Place{0, 0};       // net, place of an operation
        std::pair<int32_t, int32_t> Instance{0, 0};  // family, instance number
        OperandPtr Operand;
        int32_t NetID = 0, Type = 0, Address = 0, Mode = 1, Format = 0, VectorLength = 1;
        // False where another holder names the same link already: a TCP/IP
        // Config lists for the search what its instance's table holds.
        bool Counted = true;
    };
    std::vector<Reference> references() const;
    // The host's own copy of what an operation listed for the search after
    // its last edit with OK.
    void keepFindOnly(itfFBMethod& operation);
    MethodPtr reopen(const StoredOperation& stored);

    HostContext* context_;
    model::ChecksumTable checksums_ = model::ChecksumTable::Default();
    std::shared_ptr<itfFBGate> gate_;
    std::vector<FatherPtr> families_;
    std::map<int32_t, std::shared_ptr<HostInstances>> instances_;
    std::vector<Net> nets_;
    std::vector<StoredInstance> foreignInstances_;
    // Each operation's find-only operands as the host keeps them: the
    // operation's own list is replaced at every edit and empty after a reopen.
    std::map<const itfFBMethod*, std::vector<OperandPtr>> findOnly_;
    // The descriptions of the host, by net id, type and address.
    std::map<std::tuple<int32_t, int32_t, int32_t>, std::wstring> descriptions_;
    // The application folder the component started with; a project that
    // does not name one keeps it.
    std::wstring componentAppFolder_;
    bool modified_ = false;
};

}  // namespace qx
