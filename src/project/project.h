// A project of the stand-alone host, as plain data: ladder nets with their
// operations (every block the host keeps of an operation and every operand
// link's whole state), the Config instances of each family, the host's
// constant and operand tables, and the settings. The project file stores
// exactly this; the workbench and the CLI build their objects from it.
#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/basics/bytes.h"
#include "platform/host/host_context.h"
#include "platform/host/operand.h"
#include "runtime_model/checksum_catalogue.h"

namespace qx {

// One operand link with everything the host's operand object holds.
struct StoredOperand {
    std::wstring Key;  // its key in InOperands or OutOperands
    std::wstring Caption;
    std::wstring Title;
    std::wstring Description;
    bool IsNew = true;
    int32_t Mode = 1;
    int32_t Type = 0;
    int32_t NetID = 0;
    int32_t Address = -1;
    bool HasValue = false;
    int64_t ConstantValue = 0;
    int32_t Format = 0;
    int32_t ConstantListMode = 0;
    bool ConstantListOnly = false;
    int32_t VectorLength = 1;
    std::vector<AllowedType> AllowedTypes;
    std::vector<std::pair<int32_t, std::wstring>> ConstantList;
    bool operator==(const StoredOperand&) const = default;
};

// The blocks the host stores of one operation, and what it reopens it with.
struct StoredOperation {
    int32_t MethodID = 0;
    int32_t HexFileVersion = 100;
    int32_t FatherInstanceNum = 0;
    bool IsConducting = false;
    Bytes BinaryOperands;
    std::vector<StoredOperand> InOperands;
    std::vector<StoredOperand> OutOperands;
    // The operands its image names, as the host listed them for its search
    // after the last edit that ended with OK: the operation lists them only
    // until its next edit, and not at all after a reopen.
    std::vector<StoredOperand> FindOnly;
    // The family: MethodID without its method number.
    int32_t FatherID() const { return MethodID / 100 * 100; }
    bool operator==(const StoredOperation&) const = default;
};

struct LadderNet {
    std::wstring Comment;
    std::vector<StoredOperation> Operations;
    bool operator==(const LadderNet&) const = default;
};

// One Config instance of a family, with the image that belongs to it.
struct StoredInstance {
    int32_t FatherID = 0;
    int32_t InstanceNum = 0;
    std::wstring Name;
    Bytes Data;
    bool operator==(const StoredInstance&) const = default;
};

// An entry of the host's constant table.
struct StoredConstant {
    int32_t Address = 0;
    int32_t Type = 0;
    int64_t Value = 0;  // value times 10000
    bool operator==(const StoredConstant&) const = default;
};

// An entry of the host's operand table: one identity and how many links name it.
struct StoredLink {
    int32_t Type = 0;
    int32_t Address = 0;
    int32_t Mode = 1;
    int32_t Format = 0;
    int32_t Count = 0;
    bool operator==(const StoredLink&) const = default;
};

// The host's description of one operand identity, whichever link,
// image or instance names it.
struct StoredDescription {
    int32_t NetID = 0;
    int32_t Type = 0;
    int32_t Address = 0;
    std::wstring Text;
    bool operator==(const StoredDescription&) const = default;
};

struct ProjectSettings {
    // The host's switch for the extended operand types 64 to 67.
    bool ExtendedOperands = false;
    // The host's application folder; empty keeps the component's own.
    std::wstring AppFolder;
    // What the checksum codes of the project's images stand for in the
    // runtime model (the wire preview, loopback, decoding).
    model::ChecksumTable Checksums = model::ChecksumTable::Default();
    bool operator==(const ProjectSettings&) const = default;
};

struct Project {
    ProjectSettings Settings;
    std::vector<LadderNet> Nets;
    std::vector<StoredInstance> Instances;
    std::vector<StoredConstant> Constants;
    std::vector<StoredLink> Links;
    // By net id, type and address.
    std::vector<StoredDescription> Descriptions;
    // The next free address of the constant table.
    int32_t NextConstantAddress = 1;
    bool operator==(const Project&) const = default;
};

// An operand's whole state and back. restoreOperand leaves the operand's
// host tables alone: the project's tables are restored as a whole.
StoredOperand storeOperand(const clsOperand& operand, const std::wstring& key);
void restoreOperand(const StoredOperand& stored, clsOperand& operand);

// The host's operand and constant tables into a project, and back into an
// empty table.
void storeOperandTable(const OperandTable& table, Project& project);
void restoreOperandTable(const Project& project, OperandTable& table);

}  // namespace qx
