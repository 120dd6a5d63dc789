#include "component/gate.h"

#include <string>

#include "serial/protocol_father.h"
#include "tcpip/eth_protocol_father.h"

namespace qx {

FatherCollectionPtr clsGate::itfFBGate_GetFathersCollection() {
    auto fathers = newCollection<FatherPtr>();
    // A family whose runtime ini cannot be read fails here, and no collection comes back.
    const auto add = [&](FatherPtr father) {
        father->itfFBFather_InitProperties(*this);
        fathers->Add(father, std::to_wstring(father->itfFBFather_FatherID()));
    };
    add(std::make_shared<clsProtocolFather>());
    add(std::make_shared<clsEthProtocolFather>());
    return fathers;
}

FatherPtr clsGate::itfFBGate_GetFatherObject(int32_t FatherID) {
    FatherPtr father;
    if (FatherID == 170100)
        father = std::make_shared<clsProtocolFather>();
    else if (FatherID == 170200)
        father = std::make_shared<clsEthProtocolFather>();
    if (father) father->itfFBFather_InitProperties(*this);
    return father;
}

}  // namespace qx
