// An operation as the host drives it, with a fresh host context and the
// host's instances double: made new in a net, or given the Lets of its blocks
// from a stored project and reopened, and asked to follow a moved operand.
#pragma once
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

#include "platform/host/fb_instances_double.h"
#include "platform/host/host_context.h"
#include "platform/host/host_contract.h"
#include "support/test_helpers.h"

namespace qx::test {

// A linked operand of a stored project, as the host hands it back.
inline OperandPtr linkedOperand(int32_t type, int32_t address) {
    OperandPtr operand = newOperand();
    operand->OperandMode(1);
    linkOperand(*operand, type, address);
    return operand;
}

// The operands of a block as the host stores them, keyed "1", "2", ...
inline OperandCollectionPtr storedOperands(std::initializer_list<OperandPtr> operands) {
    auto out = std::make_shared<OperandCollection>();
    int32_t key = 0;
    for (const OperandPtr& operand : operands) out->Add(operand, std::to_wstring(++key));
    return out;
}

template <class Operation>
struct OperationBench {
    ScopedHostContext context;
    std::shared_ptr<FBInstancesDouble> instances = std::make_shared<FBInstancesDouble>();
    std::shared_ptr<Operation> operation = std::make_shared<Operation>();
    // The linked configuration a stored operation names, and the hex-file
    // version its project stored.
    std::wstring configName;
    int32_t storedHexVersion = 100;

    // An operation of the family the father stands for.
    explicit OperationBench(itfFBFather&& father, std::wstring config = {}, int32_t hexVersion = 100)
        : configName(std::move(config)), storedHexVersion(hexVersion) {
        operation->itfFBMethod_InitProperties(father);
        operation->itfFBMethod_Init(instances);
    }

    // An operation of the family with that FatherID, which asks nothing else.
    OperationBench(int32_t fatherID, std::wstring config, int32_t hexVersion = 100)
        : OperationBench(FatherStub(fatherID), std::move(config), hexVersion) {}

    // An operation just placed in a net.
    void makeNew() {
        operation->itfFBMethod_CreateDummyOperands();
        operation->itfFBMethod_BuildOperands();
    }

    // The Lets of a stored project, in the host's order, without BuildOperands.
    void letBlocks(const OperandCollectionPtr& out, const Bytes& image) {
        int32_t config = instances->Seed(configName);
        operation->itfFBMethod_InOperands(std::make_shared<OperandCollection>());
        operation->itfFBMethod_OutOperands(out);
        operation->itfFBMethod_BinaryOperands(image);
        operation->itfFBMethod_HexFileVersion(storedHexVersion);
        operation->itfFBMethod_FatherInstanceNum(config);
    }

    // An operation of a stored project with these out operands: the Lets of
    // its blocks, then BuildOperands.
    OperandCollectionPtr reopenWith(OperandCollectionPtr out, const Bytes& image) {
        letBlocks(out, image);
        operation->itfFBMethod_BuildOperands();
        return out;
    }

    OperandPtr operand(int32_t index) { return operation->itfFBMethod_OutOperands()->Item(index); }

    void replace(int32_t netID, int32_t type, int32_t address, int32_t newAddress) {
        VariantArray params{Variant(L"ReplaceFindOnlyOperand"), Variant(netID), Variant(type), Variant(address),
                            Variant(newAddress)};
        operation->itfFBMethod_Execute(params);
    }
};

}  // namespace qx::test
