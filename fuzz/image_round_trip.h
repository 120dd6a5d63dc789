// The check that every image fuzz target runs: bytes go to a reader, which
// may refuse them only with RuntimeError(9); an image it accepts is written
// again, and that image must read back and write to the very same bytes.
//
// Input layout: byte 0 is the run's settings (bit 0 switches the extended
// operands on, which decides the version byte the writer stores and how a
// checksum's STX flag loads); the rest is the image.
//
// A finding is reported on standard error and ends the process with abort(),
// so that libFuzzer and the corpus replay both stop on it. Anything thrown
// that is not a RuntimeError is left to escape: that is a finding too.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>

#include "platform/basics/bytes.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"

namespace qx::fuzz {

// Bytes the comparison of two written images skips: a write may legitimately
// differ there (a constant's place in the host's table, say).
using ImageMask = std::function<bool(const Bytes& image, size_t offset)>;

[[noreturn]] inline void finding(const char* what, const Bytes& image) {
    std::fprintf(stderr, "FINDING: %s (image of %zu bytes)\n", what, image.size());
    std::abort();
}

[[noreturn]] inline void unexpectedError(const char* step, const RuntimeError& error, const Bytes& image) {
    std::fprintf(stderr, "FINDING: %s raised RuntimeError(%d), image of %zu bytes\n", step, error.Number(),
                 image.size());
    std::abort();
}

inline void reportDifference(const Bytes& first, const Bytes& second, size_t at) {
    std::fprintf(stderr,
                 "FINDING: round trip differs: first write %zu bytes, second %zu bytes, first difference at %zu",
                 first.size(), second.size(), at);
    if (at < first.size() && at < second.size()) std::fprintf(stderr, " (%02X against %02X)", first[at], second[at]);
    std::fprintf(stderr, "\n");
}

// Runs one input through reader and writer of Set and gives the image the
// writer made of it; nothing when the reader refused the input or the writer
// the model. Set is built after the host context is installed, since its
// operands ask the context which types it allows.
template <class Set>
std::optional<Bytes> roundTrip(const uint8_t* data, size_t size, const ImageMask& ignore = nullptr) {
    if (size == 0) return std::nullopt;
    const bool extended = (data[0] & 1) != 0;
    const Bytes image(data + 1, data + size);

    Bytes first;
    {
        ScopedHostContext context;
        context->ExtendedOperands = extended;
        Set set;
        try {
            set.BinaryData(image);
        } catch (const RuntimeError& error) {
            if (error.Number() != err::SubscriptOutOfRange) unexpectedError("reading the input", error, image);
            return std::nullopt;
        }
        try {
            first = set.BinaryData();
        } catch (const RuntimeError& error) {
            // A strange image can load into a model that no image can hold:
            // a run of text above 255, a message left empty inside the range.
            if (error.Number() != err::Overflow && error.Number() != err::SubscriptOutOfRange)
                unexpectedError("writing the loaded model", error, image);
            return std::nullopt;
        }
    }

    // The writer's own image must load and write back unchanged, in a context
    // as fresh as the first one.
    Bytes second;
    {
        ScopedHostContext context;
        context->ExtendedOperands = extended;
        Set set;
        try {
            set.BinaryData(first);
        } catch (const RuntimeError& error) {
            unexpectedError("reading the writer's own image", error, first);
        }
        try {
            second = set.BinaryData();
        } catch (const RuntimeError& error) {
            unexpectedError("writing the writer's own image again", error, first);
        }
    }

    const char* what = "image does not round-trip";
    const size_t common = first.size() < second.size() ? first.size() : second.size();
    for (size_t at = 0; at < common; ++at) {
        if (first[at] == second[at] || (ignore && ignore(first, at))) continue;
        reportDifference(first, second, at);
        finding(what, first);
    }
    if (first.size() != second.size()) {
        reportDifference(first, second, common);
        finding(what, first);
    }
    return first;
}

}  // namespace qx::fuzz
