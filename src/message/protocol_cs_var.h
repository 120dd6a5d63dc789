// A checksum: inside a message it reserves CSLength positions; as the end of
// message of a Send or Scan set it lies in the image header. The library
// computes nothing: its record tells the controller which calculation to run,
// over which part of the frame, and how to write the result.
#pragma once
#include <cstdint>
#include <memory>

#include "message/field_state.h"

namespace qx {

class clsProtocolCSVar : public FieldState {
public:
    clsProtocolCSVar();

    // itfProtocolVar
    void SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) override;
    Bytes GetVarBinData(int32_t pVarTblIndex) override;
    VarPtr GetReplica() override;
    void AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) override;
    int32_t GetVarSegmentType() override;
    void ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) override;
    // 0 gives the 17-byte record of a Send image, any other value the 20-byte one.
    void MethodType(int32_t value) override { methodType_ = value; }
    int32_t MethodType() const { return methodType_; }
    void VERSION(int32_t value) override { version_ = value; }
    int32_t VERSION() const { return version_; }
    // True for a checksum in a message, false for the end-of-message checksum.
    void IsVar(bool value) override { isVar_ = value; }
    bool IsVar() const { return isVar_; }
    // Only fills STXInCS from an image of version 0.
    void ActualMethodType(int32_t value) override { actualMethodType_ = value; }
    int32_t ActualMethodType() const { return actualMethodType_; }

    using FieldState::Length;

    // 0 decimal text, 1 hex text, 2 raw bytes.
    int32_t FormatView() const { return formatView_; }
    void FormatView(int32_t value) { formatView_ = value; }
    // Writing it makes Length the same.
    int32_t CSLength() const { return csLength_; }
    void CSLength(int32_t value);
    int32_t SA_AddedValue() const { return saAddedValue_; }
    void SA_AddedValue(int32_t value) { saAddedValue_ = value; }
    int32_t SA_ToValue() const { return saToValue_; }
    void SA_ToValue(int32_t value) { saToValue_ = value; }
    int32_t SA_FromValue() const { return saFromValue_; }
    void SA_FromValue(int32_t value) { saFromValue_ = value; }
    bool SpecialAddition() const { return specialAddition_; }
    void SpecialAddition(bool value) { specialAddition_ = value; }
    int32_t ModulusType() const { return modulusType_; }
    void ModulusType(int32_t value) { modulusType_ = value; }
    int32_t CalculationType() const { return calculationType_; }
    void CalculationType(int32_t value) { calculationType_ = value; }
    int32_t OffsetTillBackwards() const { return offsetTillBackwards_; }
    void OffsetTillBackwards(int32_t value) { offsetTillBackwards_ = value; }
    int32_t OffsetFromForward() const { return offsetFromForward_; }
    void OffsetFromForward(int32_t value) { offsetFromForward_ = value; }
    bool STXInCS() const { return stxInCS_; }
    void STXInCS(bool value) { stxInCS_ = value; }

    // Back to the defaults, except SA_AddedValue, MethodType and ActualMethodType.
    void InitChecksum();

    static constexpr int32_t SendRecordSize = 17;
    static constexpr int32_t ScanRecordSize = 20;

protected:
    uint32_t backColor() const override { return ChecksumBackColor; }

private:
    int32_t csLength_ = 1;
    int32_t formatView_ = 0;
    int32_t calculationType_ = 1;
    int32_t modulusType_ = 1;
    int32_t offsetFromForward_ = 0;
    int32_t offsetTillBackwards_ = 0;
    bool stxInCS_ = false;
    bool specialAddition_ = false;
    int32_t saFromValue_ = 0;
    int32_t saToValue_ = 0;
    int32_t saAddedValue_ = 0;
    int32_t version_ = 0;
    bool isVar_ = false;
    int32_t methodType_ = 0;
    int32_t actualMethodType_ = 0;
};

using CSVarPtr = std::shared_ptr<clsProtocolCSVar>;

}  // namespace qx
