// Creates the library's gate through the installed package and prints its id.
#include <qxfbcom2/qxfbcom2.h>

#include <iostream>
#include <memory>

int main() {
    std::shared_ptr<qx::itfFBGate> gate = std::make_shared<qx::clsGate>();
    const int32_t gateID = gate->itfFBGate_GateID();
    std::cout << "GateID " << gateID << "\n";
    return gateID == 170000 ? 0 : 1;
}
