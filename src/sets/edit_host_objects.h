// The two host objects that Edit hands a message set for the time of one
// edit: the operation, and the host's side of the family's instances. The
// set keeps them only to show the family's help.
#pragma once
#include "platform/host/host_contract.h"

namespace qx {

struct EditHostObjects {
    // The operation outlives the set, which lives for one edit of it.
    itfFBMethod* Method = nullptr;
    InstancesPtr Instances;

    // The help of the family: the method id cut to a multiple of 100 is the
    // family's id. Without the objects of an edit there is nothing to show.
    void ShowHelp() const {
        if (!Method || !Instances) return;
        Instances->ShowFBHelp((Method->itfFBMethod_MethodID() / 100) * 100);
    }
};

}  // namespace qx
