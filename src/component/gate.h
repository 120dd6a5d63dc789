// clsGate: the library's single entry point. The host creates it and gets
// from it the two function-block families, each one freshly made.
#pragma once
#include <cstdint>

#include "platform/basics/object_count.h"
#include "platform/host/host_contract.h"

namespace qx {

class clsGate : public itfFBGate, protected CountedObject {
public:
    static constexpr int32_t GateID = 170000;

    FatherCollectionPtr itfFBGate_GetFathersCollection() override;
    int32_t itfFBGate_GateID() override { return GateID; }
    // Nothing, without an error, for an id that is no family of this library.
    FatherPtr itfFBGate_GetFatherObject(int32_t FatherID) override;
    void itfFBGate_PrintFB(const Variant&) override {}
    void itfFBGate_Execute(const Variant&) override {}
};

}  // namespace qx
