#include "serial/protocol_copy_to_buffer.h"

#include <memory>

#include "platform/basics/bytes.h"
#include "platform/basics/runtime_error.h"
#include "serial/frm_protocol_copy_bytes.h"

namespace qx {

namespace {
constexpr size_t imageSize = clsProtocolCopyToBufferSrv::ImageSize;

FBMethodInfo copyToBufferInfo() {
    return FBMethodInfo{
        .MethodNumber = 4,
        .Title = L"COPY BUFFER",
        .Description = L"Copies whatever information is in the receive buffer at the time the operation is called.",
        .MethodNameText = 219,
        .VisbleInCout = 0,
        .VisbleOutCout = 1,
        .HasBinaryImage = true,
        .AnswersBusBar = false,
        .OutOperandSpecs =
            {
                // The copy destination.
                {.TypeAtCreation = 3,
                 .AllowedTypes = {3, 5, 16},
                 .ExtendedTypes = {65, 66, 67},
                 .TextNumber = 29,
                 .Visible = true},
            },
    };
}
}  // namespace

Bytes clsProtocolCopyToBufferSrv::BinaryData() const {
    Bytes image(imageSize, 0);
    ByteWriter writer(image);
    writer.u8(0, copyFormat_);
    writer.u8(1, 0);
    return image;
}

void clsProtocolCopyToBufferSrv::BinaryData(const Bytes& value) { copyFormat_ = ByteReader(value).u8(0); }

bool clsProtocolCopyToBufferSrv::Edit(itfFBMethod& pMethod, InstancesPtr pInstances) {
    method_ = &pMethod;
    instances_ = std::move(pInstances);
    OperandPtr destination = outOperandAt(pMethod, 1);
    // The dialog works on a copy, so that a Cancel leaves the format as it was.
    int32_t format = copyFormat_;
    frmProtocolCopyBytes dialog;
    if (!dialog.Edit(format, destination, L"Copy to : ", pMethod, instances_)) return false;
    copyFormat_ = format;
    return true;
}

clsProtocolCopyToBuffer::clsProtocolCopyToBuffer() : FBMethodBase(copyToBufferInfo()) {}

void clsProtocolCopyToBuffer::itfFBMethod_EditOperands() {
    auto srv = std::make_unique<clsProtocolCopyToBufferSrv>();
    newOperandsForFindOnly();
    if (!itfFBMethod_IsNew()) srv->BinaryData(itfFBMethod_BinaryOperands());

    if (srv->Edit(*this, Instances())) {
        itfFBMethod_IsCanceled(false);
        setBinaryOperands(srv->BinaryData());
    } else {
        itfFBMethod_IsCanceled(true);
    }

    srv.reset();
    if (!itfFBMethod_IsCanceled()) setIsNew(false);
}

// Allowed on the bus bar: no command gets an answer.
void clsProtocolCopyToBuffer::itfFBMethod_Execute(VariantArray&) {}

}  // namespace qx
