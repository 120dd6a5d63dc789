// The host's variant: empty, Boolean, integers, double, text or byte block.
// A plain value that owns no object of the library, so it is not counted and
// a host may keep one after unloading the component.
#pragma once
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "platform/basics/bytes.h"

namespace qx {

class Variant {
public:
    using Storage = std::variant<std::monostate, bool, int32_t, int64_t, double, std::wstring, Bytes>;

    Variant() = default;
    Variant(bool v) : value_(v) {}
    Variant(int32_t v) : value_(v) {}
    Variant(int64_t v) : value_(v) {}
    Variant(double v) : value_(v) {}
    Variant(std::wstring v) : value_(std::move(v)) {}
    Variant(const wchar_t* v) : value_(std::wstring(v)) {}
    Variant(Bytes v) : value_(std::move(v)) {}

    bool IsEmpty() const { return std::holds_alternative<std::monostate>(value_); }
    template <class T>
    bool Is() const {
        return std::holds_alternative<T>(value_);
    }
    template <class T>
    const T& Get() const {
        return std::get<T>(value_);
    }

    // Conversions as the host does them: empty is 0, a text must read as a
    // number or it is a type mismatch (RuntimeError 13), a non-integral or
    // out-of-range value is an overflow (RuntimeError 6).
    int32_t ToI4() const;
    int64_t ToI8() const;
    bool ToBool() const;
    std::wstring ToText() const;

    bool operator==(const Variant& other) const = default;

private:
    Storage value_;
};

using VariantArray = std::vector<Variant>;

// The string-to-number conversion of the host: blanks around are allowed,
// anything else that is not a decimal number is a type mismatch.
int32_t textToI4(const std::wstring& text);

}  // namespace qx
