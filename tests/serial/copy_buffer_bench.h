// A serial Copy buffer operation as the host drives it, with the host's
// instances and a scripted person, for the tests of the operation and of its
// dialog.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/controls/form.h"
#include "platform/host/host_contract.h"
#include "serial/config_bench.h"
#include "serial/frm_protocol_copy_bytes.h"
#include "serial/protocol_copy_to_buffer.h"
#include "support/operation_bench.h"

namespace qx::testing_copy {

using testing_config::memoryChoice;

struct CopyBufferBench : test::OperationBench<clsProtocolCopyToBuffer> {
    ScriptedModalDriver& driver = *context->Script();
    std::shared_ptr<clsProtocolCopyToBuffer>& copy = operation;

    CopyBufferBench() : OperationBench(testing_config::SerialFatherStub{}, L"Line1") {}

    // A Copy buffer of a stored project, its destination linked to an operand
    // of that type, linked to the Config "Line1"; returns that instance's number.
    int32_t reopen(const Bytes& image, int32_t destinationType = 5, int32_t address = 40) {
        reopenWith(test::storedOperands({testing_config::linkedOperand(destinationType, address, L"Target")}), image);
        return copy->itfFBMethod_FatherInstanceNum();
    }

    void onDialog(std::function<void(frmProtocolCopyBytes&)> script) {
        driver.QueueDialog(scriptFor<frmProtocolCopyBytes>(std::move(script)));
    }

    // Runs an edit with the given person's actions.
    void edit(std::function<void(frmProtocolCopyBytes&)> script) {
        onDialog(std::move(script));
        copy->itfFBMethod_EditOperands();
    }

    bool accepted() { return !copy->itfFBMethod_IsCanceled(); }
    Bytes image() { return copy->itfFBMethod_BinaryOperands(); }

    std::vector<int32_t> messageNumbers() {
        std::vector<int32_t> numbers;
        for (const auto& message : context->Messages) numbers.push_back(message.Number);
        return numbers;
    }
};

}  // namespace qx::testing_copy
