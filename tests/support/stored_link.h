// A linked memory operand as a project stores it, for the tests, seeds and
// benchmarks that build projects by hand; callers add what else it holds
// (allowed types, a constant's value and list).
#pragma once
#include <cstdint>
#include <string>

#include "project/project.h"

namespace qx::test {

inline StoredOperand storedLink(const std::wstring& key, const std::wstring& caption, int32_t type, int32_t address,
                                const std::wstring& description) {
    StoredOperand operand;
    operand.Key = key;
    operand.Caption = caption;
    operand.Title = caption;
    operand.Description = description;
    operand.IsNew = false;
    operand.Type = type;
    operand.Address = address;
    operand.Format = 3;
    return operand;
}

}  // namespace qx::test
