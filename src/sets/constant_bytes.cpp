#include "sets/constant_bytes.h"

#include <string>

#include "platform/basics/runtime_error.h"
#include "platform/host/host_services.h"

namespace qx {

namespace {

constexpr int64_t kScale = 10000;
constexpr int64_t kLargestUnsigned32 = 0xFFFFFFFFLL;
constexpr int32_t kReportSeverity = 16;

// The number the host's own currency helper reports a wrong array length with.
constexpr int64_t kWrongLengthNumber = 0x80040006LL;

void report(const std::wstring& name, int64_t number, const std::wstring& text, const std::wstring& project,
            const std::wstring& module, const std::wstring& procedure) {
    clsErrorReporter().Report({name, number, text, project, module, procedure, kReportSeverity});
}

// The host's conversion of a fixed-point value to a 32-bit integer: to the
// nearest, a half to the even neighbour; outside the range an overflow.
int32_t roundToLong(int64_t scaled) {
    int64_t whole = scaled / kScale;
    int64_t rest = scaled % kScale;
    int64_t twice = 2 * (rest < 0 ? -rest : rest);
    if (twice > kScale || (twice == kScale && whole % 2 != 0)) whole += scaled < 0 ? -1 : 1;
    if (whole < INT32_MIN || whole > INT32_MAX) raiseError(err::Overflow);
    return static_cast<int32_t>(whole);
}

Bytes signedBytes(int32_t value) {
    Bytes out(4, 0);
    ByteWriter(out).i32(0, value);
    return out;
}

}  // namespace

bool ConstantToBytes(const clsOperand& pOperand, Bytes& pBytes) {
    switch (pOperand.OperandType()) {
        case 34:
        case 37:
            pBytes = signedBytes(roundToLong(pOperand.OperandConstantValue()));
            return true;
        case 35:
        case 38:
            pBytes = CurrencyTo4Bytes(pOperand.OperandConstantValue());
            return true;
        default:
            pBytes.clear();
            return false;
    }
}

Bytes CurrencyTo4Bytes(int64_t pValue) {
    if (pValue >= 0) return prvPositiveCurrencyTo4Bytes(pValue);
    return signedBytes(roundToLong(pValue));
}

Bytes prvPositiveCurrencyTo4Bytes(int64_t pValue) {
    Bytes out(4, 0);
    if (pValue > kLargestUnsigned32 * kScale) {
        report(L"ErrHandler", err::Overflow, L"Overflow", L"QxHmDnl1", L"mdlHMIDownload",
               L"prvPositiveCurrencyTo4Bytes");
        return out;
    }
    // A fraction has no place in the four bytes and is dropped.
    int64_t value = pValue / kScale;
    for (auto& byte : out) {
        byte = static_cast<uint8_t>(value % 256);
        value /= 256;
    }
    return out;
}

int64_t FourBytesToCurrency(const Bytes& pBytes) {
    if (pBytes.size() != 4) {
        // The texts and names are those of the host's helper this was taken from.
        report(L"ErrHandler", kWrongLengthNumber,
               L"Array for conversion from currency to bytes should be exactly 4 bytes long.\r\nActually recieved " +
                   std::to_wstring(pBytes.size()) + L" bytes",
               L"QxUtGlb1", L"clsCurrencyToBytes", L"CurrencyTo4Bytes");
        return 0;
    }
    int64_t value = static_cast<int64_t>(pBytes[0]) + 256LL * pBytes[1] + 65536LL * pBytes[2] + 16777216LL * pBytes[3];
    return value * kScale;
}

}  // namespace qx
