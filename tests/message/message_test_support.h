// Small helpers of the message model tests, beside the shared ones in
// support/test_helpers.h: placing a field's record where an image places it,
// so that a reader gets the index it gets from the image code.
#pragma once
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "platform/basics/bytes.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_contract.h"
#include "platform/host/operand.h"
#include "support/test_helpers.h"

namespace qx::test {

// A Send segment table entry: the type byte at entryAt, the 17-byte record behind it.
inline Bytes sendTableImage(uint8_t type, const Bytes& record, size_t entryAt) {
    Bytes image(entryAt + 18 + 6, 0xEE);
    image[entryAt] = type;
    for (size_t i = 0; i < record.size(); ++i) image[entryAt + 1 + i] = record[i];
    return image;
}

// A Scan segment table entry: position word, type byte at entryAt + 2, 20-byte record at entryAt + 4.
inline Bytes scanTableImage(uint8_t type, const Bytes& record, size_t entryAt) {
    Bytes image(entryAt + 24 + 6, 0xEE);
    image[entryAt] = 0;
    image[entryAt + 1] = 0;
    image[entryAt + 2] = type;
    image[entryAt + 3] = 0;
    for (size_t i = 0; i < record.size(); ++i) image[entryAt + 4 + i] = record[i];
    return image;
}

// A record of the data area placed at its (even) offset.
inline Bytes dataAreaImage(const Bytes& record, size_t at) {
    Bytes image(at + record.size() + 2, 0xEE);
    for (size_t i = 0; i < record.size(); ++i) image[at + i] = record[i];
    return image;
}

inline std::vector<int32_t> allowedTypes(const clsOperand& operand) {
    std::vector<int32_t> out;
    for (const auto& a : operand.AllowedTypes()) {
        EXPECT_EQ(a.Mode, 1);
        EXPECT_TRUE(a.Allowed);
        out.push_back(a.OperandType);
    }
    return out;
}

}  // namespace qx::test
