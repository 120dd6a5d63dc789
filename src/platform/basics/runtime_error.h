// The one exception type of the library: a number, a source and a
// description, as the host's error object carries them.
#pragma once
#include <cstdint>
#include <stdexcept>
#include <string>

namespace qx {

class RuntimeError : public std::runtime_error {
public:
    RuntimeError(int32_t number, std::wstring source, std::wstring description);

    int32_t Number() const { return number_; }
    const std::wstring& Source() const { return source_; }
    const std::wstring& Description() const { return description_; }

private:
    int32_t number_;
    std::wstring source_;
    std::wstring description_;
};

// The classic run-time error numbers used by the library.
namespace err {
inline constexpr int32_t InvalidProcedureCall = 5;
inline constexpr int32_t Overflow = 6;
inline constexpr int32_t OutOfMemory = 7;
inline constexpr int32_t SubscriptOutOfRange = 9;
inline constexpr int32_t TypeMismatch = 13;
inline constexpr int32_t FileNotFound = 53;
inline constexpr int32_t DeviceIOError = 57;
inline constexpr int32_t DiskFull = 61;
inline constexpr int32_t PermissionDenied = 70;
inline constexpr int32_t PathFileAccessError = 75;
inline constexpr int32_t ObjectNotSet = 91;
inline constexpr int32_t InvalidFileFormat = 321;
}  // namespace err

[[noreturn]] void raiseError(int32_t number, const std::wstring& source = L"QxFBCom2");

// The object behind a pointer the host gave or left empty: a call on nothing
// is error 91, as the host's runtime raises it, and never a crash.
template <class Pointer>
decltype(auto) objectOf(const Pointer& object) {
    if (!object) raiseError(err::ObjectNotSet);
    return *object;
}

// The byte or word that must hold a value: anything out of range is an overflow.
inline uint8_t checkedByte(int64_t value) {
    if (value < 0 || value > 0xFF) raiseError(err::Overflow);
    return static_cast<uint8_t>(value);
}
inline uint16_t checkedWord(int64_t value) {
    if (value < 0 || value > 0xFFFF) raiseError(err::Overflow);
    return static_cast<uint16_t>(value);
}

}  // namespace qx
