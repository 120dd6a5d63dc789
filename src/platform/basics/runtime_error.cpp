#include "platform/basics/runtime_error.h"

#include "platform/basics/ansi.h"

namespace qx {

namespace {
std::wstring standardText(int32_t number) {
    switch (number) {
        case err::InvalidProcedureCall:
            return L"Invalid procedure call or argument";
        case err::Overflow:
            return L"Overflow";
        case err::SubscriptOutOfRange:
            return L"Subscript out of range";
        case err::TypeMismatch:
            return L"Type mismatch";
        case err::FileNotFound:
            return L"File not found";
        case err::ObjectNotSet:
            return L"Object variable or With block variable not set";
        default:
            return L"Application-defined or object-defined error";
    }
}
}  // namespace

RuntimeError::RuntimeError(int32_t number, std::wstring source, std::wstring description)
    : std::runtime_error(toUtf8(L"Run-time error " + std::to_wstring(number) + L": " + description)),
      number_(number),
      source_(std::move(source)),
      description_(std::move(description)) {}

void raiseError(int32_t number, const std::wstring& source) {
    throw RuntimeError(number, source, standardText(number));
}

}  // namespace qx
