// A serial Config operation as the host drives it, with the host's instances
// and a scripted person, for the tests of the operation and of its dialog.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "platform/controls/form.h"
#include "platform/host/host_contract.h"
#include "serial/frm_protocol_config.h"
#include "serial/protocol_config.h"
#include "support/operation_bench.h"

namespace qx::testing_config {

// The serial family as far as an operation's InitProperties reads it.
class SerialFatherStub : public itfFBFather {
public:
    MethodCollectionPtr itfFBFather_GetFBmethodsCollection() override { return nullptr; }
    MethodPtr itfFBFather_GetFBMethodObject(int32_t) override { return nullptr; }
    std::wstring itfFBFather_FatherName() override { return L"Protocol"; }
    std::wstring itfFBFather_Title() override { return L"PROTOCOL"; }
    std::wstring itfFBFather_Description() override { return L"serial"; }
    int32_t itfFBFather_FatherID() override { return 170100; }
    int32_t itfFBFather_InstanceType() override { return 2; }
    std::vector<int32_t> itfFBFather_HexFileVersionsList() override { return {100}; }
    int32_t itfFBFather_CurrentHexFileVersion() override { return 100; }
    PicturePtr itfFBFather_MenuIcon() override { return nullptr; }
    Bytes itfFBFather_AdditionalData() override { return {}; }
    void itfFBFather_AdditionalData(const Bytes&) override {}
    FBHexFileDetails itfFBFather_GetHexFileDetails(int32_t) override { return {}; }
    void itfFBFather_InitProperties(itfFBGate&) override {}
    void itfFBFather_PrintFB(const Variant&) override {}
    void itfFBFather_Execute(const Variant&) override {}
};

// A linked operand as the host hands it back with a stored project.
inline OperandPtr linkedOperand(int32_t type, int32_t address, const std::wstring& description) {
    OperandPtr operand = test::linkedOperand(type, address);
    operand->OperandDescription(description);
    return operand;
}

using test::memoryChoice;

struct ConfigBench : test::OperationBench<clsProtocolConfig> {
    ScriptedModalDriver& driver = *context->Script();
    std::shared_ptr<clsProtocolConfig>& config = operation;

    ConfigBench() : OperationBench(SerialFatherStub{}) {}

    // A Config of a stored project, both operands linked; returns its instance number.
    int32_t reopen(const std::wstring& name, const Bytes& image) {
        int32_t number = instances->Seed(name);
        auto out = test::storedOperands({linkedOperand(1, 10, L"Busy"), linkedOperand(3, 20, L"State")});
        config->itfFBMethod_InOperands(std::make_shared<OperandCollection>());
        config->itfFBMethod_OutOperands(out);
        config->itfFBMethod_BinaryOperands(image);
        config->itfFBMethod_FatherInstanceNum(number);
        config->itfFBMethod_BuildOperands();
        return number;
    }

    void onDialog(std::function<void(frmProtocolConfig&)> script) {
        driver.QueueDialog(scriptFor<frmProtocolConfig>(std::move(script)));
    }
};

}  // namespace qx::testing_config
