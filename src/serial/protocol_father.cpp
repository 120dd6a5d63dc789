#include "serial/protocol_father.h"

#include "serial/protocol_config.h"
#include "serial/protocol_copy_to_buffer.h"
#include "serial/protocol_reset_buffer.h"
#include "serial/protocol_scan.h"
#include "serial/protocol_send.h"

namespace qx {

clsProtocolFather::clsProtocolFather() : FBFatherBase({1, L"Protocol", L"PROTOCOL", 328, 2, 5}) {}

MethodPtr clsProtocolFather::createMethod(int32_t methodNumber) const {
    switch (methodNumber) {
        case 1:
            return std::make_shared<clsProtocolConfig>();
        case 2:
            return std::make_shared<clsProtocolscan>();
        case 3:
            return std::make_shared<clsProtocolSend>();
        case 4:
            return std::make_shared<clsProtocolCopyToBuffer>();
        case 5:
            return std::make_shared<clsProtocolResetBuffer>();
        default:
            return nullptr;
    }
}

}  // namespace qx
