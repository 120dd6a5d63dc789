#include "project/project_export.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "platform/basics/ansi.h"
#include "platform/host/host_services.h"
#include "project/download_bundle.h"
#include "project/operation_text_form.h"
#include "runtime_model/checksum_table_json.h"

namespace qx {

namespace {

using Json = nlohmann::ordered_json;

// Texts of the project may hold characters with no UTF-8 form (a name read
// from a file that was not UTF-8): written as the bundle writes them.
Json text(const std::wstring& value) { return Json::parse(jsonString(value)); }

std::string hex(const Bytes& bytes) {
    std::string out;
    char byte[4];
    for (uint8_t value : bytes) {
        std::snprintf(byte, sizeof byte, out.empty() ? "%02X" : " %02X", value);
        out += byte;
    }
    return out;
}

std::string numbered(int32_t value) {
    char out[8];
    std::snprintf(out, sizeof out, "%03d", static_cast<int>(value));
    return out;
}

// "MI 12", or the constant's value for a constant.
Json operandsOf(const std::vector<StoredOperand>& operands) {
    const clsOperandTypeNames names;
    Json list = Json::array();
    for (const StoredOperand& operand : operands) {
        Json entry;
        entry["key"] = text(operand.Key);
        entry["caption"] = text(operand.Caption);
        if (operand.HasValue)
            entry["constant"] = operand.ConstantValue;
        else if (operand.Address >= 0)
            entry["operand"] = toUtf8(names.GetName(operand.Type)) + " " + std::to_string(operand.Address);
        if (operand.VectorLength != 1) entry["vector length"] = operand.VectorLength;
        if (!operand.Description.empty()) entry["description"] = text(operand.Description);
        list.push_back(entry);
    }
    return list;
}

}  // namespace

std::vector<BundleFile> writeProjectExport(const Project& project, const std::string& folder) {
    FolderWriter writer("export", L"QxFBCom2 project export", folder);
    Json document;
    document["format"] = ProjectExportFormat;
    document["version"] = 1;
    document["settings"] = {{"extended operands", project.Settings.ExtendedOperands},
                            {"application folder", text(project.Settings.AppFolder)},
                            {"checksums", "checksums.json"}};
    Json nets = Json::array();
    for (size_t n = 0; n < project.Nets.size(); ++n) {
        Json operations = Json::array();
        const auto& stored = project.Nets[n].Operations;
        for (size_t i = 0; i < stored.size(); ++i) {
            const StoredOperation& operation = stored[i];
            Json entry;
            entry["MethodID"] = operation.MethodID;
            entry["HexFileVersion"] = operation.HexFileVersion;
            entry["FatherInstanceNum"] = operation.FatherInstanceNum;
            const MessageSetKind kind = messageSetKindOf(operation);
            const std::optional<std::string> json = textFormOf(operation, project.Settings.ExtendedOperands);
            if (json) {
                const std::string name = "messages/net" + numbered(static_cast<int32_t>(n + 1)) + "_op" +
                                         numbered(static_cast<int32_t>(i + 1)) +
                                         (kind == MessageSetKind::Send ? "_send.json" : "_scan.json");
                writer.write(name, *json);
                entry["messages"] = name;
            } else {
                // An image the text form cannot show stays as its bytes.
                entry["image"] = hex(operation.BinaryOperands);
            }
            entry["inputs"] = operandsOf(operation.InOperands);
            entry["outputs"] = operandsOf(operation.OutOperands);
            operations.push_back(entry);
        }
        nets.push_back({{"comment", text(project.Nets[n].Comment)}, {"operations", operations}});
    }
    document["nets"] = nets;
    Json instances = Json::array();
    for (const StoredInstance& instance : project.Instances)
        instances.push_back({{"FatherID", instance.FatherID},
                             {"InstanceNum", instance.InstanceNum},
                             {"name", text(instance.Name)},
                             {"data", hex(instance.Data)}});
    document["instances"] = instances;
    const clsOperandTypeNames names;
    Json constants = Json::array();
    for (const StoredConstant& constant : project.Constants)
        constants.push_back({{"address", constant.Address},
                             {"type", toUtf8(names.GetName(constant.Type))},
                             {"value times 10000", constant.Value}});
    document["constants"] = constants;
    Json descriptions = Json::array();
    for (const StoredDescription& description : project.Descriptions)
        descriptions.push_back(
            {{"net", description.NetID},
             {"operand", toUtf8(names.GetName(description.Type)) + " " + std::to_string(description.Address)},
             {"text", text(description.Text)}});
    document["descriptions"] = descriptions;
    writer.write("checksums.json", model::checksumTableToJson(project.Settings.Checksums));
    writer.write("project.json", document.dump(2) + "\n");
    writer.publish();
    return std::move(writer.files());
}

}  // namespace qx
