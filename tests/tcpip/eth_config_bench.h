// A TCP/IP Config as the host drives it, with the host's instances and a
// scripted person, for the tests of the operation and of its two dialogs.
#pragma once
#include <functional>
#include <memory>
#include <string>

#include "platform/controls/form.h"
#include "support/operation_bench.h"
#include "tcpip/eth_protocol_config.h"
#include "tcpip/frm_eth_address_param.h"
#include "tcpip/frm_eth_protocol_config.h"

namespace qx::testing_eth {

constexpr int32_t kEthFatherID = 170200;

using test::memoryChoice;

// Socket n from the constant list, as the picker gives it.
inline OperandChoice socketChoice(int32_t socket) {
    OperandChoice picked;
    picked.Mode = 2;
    picked.OperandType = 37;
    picked.OperandAddress = -1;
    picked.Description = L"Socket " + std::to_wstring(socket);
    picked.ConstantValue = static_cast<int64_t>(socket) * 10000;
    return picked;
}

struct EthConfigBench : test::OperationBench<clsEthProtocolConfig> {
    ScriptedModalDriver& driver = *context->Script();
    std::shared_ptr<clsEthProtocolConfig>& config = operation;

    EthConfigBench() : OperationBench(kEthFatherID, L"") {}

    // The person's actions on the Config dialog, run when it shows.
    void onDialog(std::function<void(frmEthProtocolConfig&)> script) {
        driver.QueueDialog(scriptFor<frmEthProtocolConfig>(std::move(script)));
    }
    // The person's actions on the address dialog.
    void onAddressDialog(std::function<void(frmEthAddressParam&)> script) {
        driver.QueueDialog(scriptFor<frmEthAddressParam>(std::move(script)));
    }

    // A Config just placed, walked through both links by the person.
    void placeNew(int32_t socket = 1, int32_t statusMI = 100) {
        makeNew();
        driver.QueuePick(socketChoice(socket));
        driver.QueuePick(memoryChoice(3, statusMI, L"status"));
    }

    // A Config of a stored project: socket 2 and status MI 50 linked, the
    // instance with this name and address table; returns its number.
    int32_t reopen(const std::wstring& name, const Bytes& table) {
        OperandPtr socket = newOperand();
        socket->OperandMode(2);
        socket->OperandType(37);
        socket->OperandAddress(1);
        socket->OperandConstantValue(20000);
        socket->OperandFormat(3);
        socket->OperandDescription(L"Socket 2");
        socket->IsNew(false);
        int32_t number = instances->Seed(name, table);
        config->itfFBMethod_InOperands(test::storedOperands({socket}));
        config->itfFBMethod_OutOperands(test::storedOperands({test::linkedOperand(3, 50)}));
        config->itfFBMethod_HexFileVersion(100);
        config->itfFBMethod_FatherInstanceNum(number);
        config->itfFBMethod_BuildOperands();
        return number;
    }
};

}  // namespace qx::testing_eth
