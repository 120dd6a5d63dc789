#include "tcpip/eth_protocol_father.h"

#include "tcpip/eth_protocol_config.h"
#include "tcpip/eth_protocol_scan.h"
#include "tcpip/eth_protocol_send.h"

namespace qx {

clsEthProtocolFather::clsEthProtocolFather() : FBFatherBase({2, L"Protocol TCP/IP", L"P. TCP/IP", 593, 3, 3}) {}

MethodPtr clsEthProtocolFather::createMethod(int32_t methodNumber) const {
    switch (methodNumber) {
        case 1:
            return std::make_shared<clsEthProtocolConfig>();
        case 2:
            return std::make_shared<clsEthProtocolScan>();
        case 3:
            return std::make_shared<clsEthProtocolSend>();
        default:
            return nullptr;
    }
}

}  // namespace qx
