// Helpers shared by the tests of every folder: byte images written out part
// by part, linking an operand as the picker would, the number of the
// RuntimeError a call raised, a family stub and an operation stub.
#pragma once
#include <gtest/gtest.h>

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "framework/fb_method_base.h"
#include "platform/basics/bytes.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/operand.h"

namespace qx::test {

// A memory operand as a person picks it in the host's picker.
inline OperandChoice memoryChoice(int32_t type, int32_t address, const std::wstring& description = L"") {
    OperandChoice picked;
    picked.Mode = 1;
    picked.OperandType = type;
    picked.OperandAddress = address;
    picked.Description = description;
    return picked;
}

// Byte images written out part by part, in the order of their layout.
inline Bytes concat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts) out.insert(out.end(), part.begin(), part.end());
    return out;
}

inline Bytes zeros(size_t count) { return Bytes(count, 0); }

inline void linkOperand(clsOperand& operand, int32_t type, int32_t address, int32_t netId = 0) {
    operand.OperandType(type);
    operand.OperandAddress(address);
    operand.OperandNetID(netId);
    operand.IsNew(false);
}

// What runtimeErrorOf gives when the call raised no RuntimeError.
inline constexpr int32_t kNoRuntimeError = -1;

// Runs the call and gives the number of the RuntimeError it raised;
// kNoRuntimeError when it raised none. Any other exception fails the test.
template <class F>
int32_t runtimeErrorOf(F&& call) {
    try {
        call();
    } catch (const RuntimeError& error) {
        return error.Number();
    }
    return kNoRuntimeError;
}

// The RuntimeError the call raised, to look at its number and words; a
// failure of the test (and an error numbered 0) when it raised none.
template <class F>
RuntimeError raisedError(F&& call) {
    try {
        call();
    } catch (const RuntimeError& error) {
        return error;
    }
    ADD_FAILURE() << "no RuntimeError was raised";
    return RuntimeError(0, L"", L"");
}

// A family that answers only what an operation asks of it at InitProperties.
class FatherStub : public itfFBFather {
public:
    explicit FatherStub(int32_t fatherID) : fatherID_(fatherID) {}
    MethodCollectionPtr itfFBFather_GetFBmethodsCollection() override { return nullptr; }
    MethodPtr itfFBFather_GetFBMethodObject(int32_t) override { return nullptr; }
    std::wstring itfFBFather_FatherName() override { return L"Stub"; }
    std::wstring itfFBFather_Title() override { return L"STUB"; }
    std::wstring itfFBFather_Description() override { return L""; }
    int32_t itfFBFather_FatherID() override { return fatherID_; }
    int32_t itfFBFather_InstanceType() override { return 0; }
    std::vector<int32_t> itfFBFather_HexFileVersionsList() override { return {}; }
    int32_t itfFBFather_CurrentHexFileVersion() override { return 100; }
    PicturePtr itfFBFather_MenuIcon() override { return nullptr; }
    Bytes itfFBFather_AdditionalData() override { return {}; }
    void itfFBFather_AdditionalData(const Bytes&) override {}
    FBHexFileDetails itfFBFather_GetHexFileDetails(int32_t) override { return {}; }
    void itfFBFather_InitProperties(itfFBGate&) override {}
    void itfFBFather_PrintFB(const Variant&) override {}
    void itfFBFather_Execute(const Variant&) override {}

private:
    int32_t fatherID_;
};

// An operation with a method number and nothing else, to hand a set as Edit would.
class MethodStub : public FBMethodBase {
public:
    MethodStub(int32_t fatherID, int32_t methodNumber)
        : FBMethodBase(FBMethodInfo{methodNumber, L"STUB", L"", 0, 0, 0, true, false, {}}) {
        FatherStub father(fatherID);
        itfFBMethod_InitProperties(father);
    }
    void itfFBMethod_EditOperands() override {}
};

// A text as GoogleTest takes it for the name of a parameterized test: letters,
// digits and '_' only.
inline std::string testNameOf(const std::string& text) {
    std::string name;
    for (char ch : text) name += std::isalnum(static_cast<unsigned char>(ch)) ? ch : '_';
    return name;
}

}  // namespace qx::test
