#include "platform/basics/variant.h"

#include <cmath>
#include <cwctype>
#include <limits>

#include "platform/basics/runtime_error.h"

namespace qx {

namespace {
int32_t narrow(int64_t v) {
    if (v < std::numeric_limits<int32_t>::min() || v > std::numeric_limits<int32_t>::max()) raiseError(err::Overflow);
    return static_cast<int32_t>(v);
}

int64_t parseInteger(const std::wstring& text) {
    size_t b = 0, e = text.size();
    while (b < e && std::iswspace(text[b])) ++b;
    while (e > b && std::iswspace(text[e - 1])) --e;
    if (b == e) raiseError(err::TypeMismatch);
    bool negative = false;
    if (text[b] == L'+' || text[b] == L'-') negative = text[b++] == L'-';
    if (b == e) raiseError(err::TypeMismatch);
    int64_t value = 0;
    for (size_t i = b; i < e; ++i) {
        if (text[i] < L'0' || text[i] > L'9') raiseError(err::TypeMismatch);
        value = value * 10 + (text[i] - L'0');
        if (value > (int64_t{1} << 40)) raiseError(err::Overflow);
    }
    return negative ? -value : value;
}
}  // namespace

int32_t textToI4(const std::wstring& text) { return narrow(parseInteger(text)); }

int64_t Variant::ToI8() const {
    struct Visitor {
        int64_t operator()(std::monostate) const { return 0; }
        int64_t operator()(bool v) const { return v ? -1 : 0; }
        int64_t operator()(int32_t v) const { return v; }
        int64_t operator()(int64_t v) const { return v; }
        int64_t operator()(double v) const {
            if (!std::isfinite(v) || std::fabs(v) > 9.2e18) raiseError(err::Overflow);
            return static_cast<int64_t>(std::nearbyint(v));
        }
        int64_t operator()(const std::wstring& v) const { return parseInteger(v); }
        int64_t operator()(const Bytes&) const { raiseError(err::TypeMismatch); }
    };
    return std::visit(Visitor{}, value_);
}

int32_t Variant::ToI4() const { return narrow(ToI8()); }

bool Variant::ToBool() const { return ToI8() != 0; }

std::wstring Variant::ToText() const {
    if (Is<std::wstring>()) return Get<std::wstring>();
    if (IsEmpty()) return L"";
    if (Is<bool>()) return Get<bool>() ? L"True" : L"False";
    if (Is<double>()) return std::to_wstring(Get<double>());
    if (Is<Bytes>()) raiseError(err::TypeMismatch);
    return std::to_wstring(ToI8());
}

}  // namespace qx
