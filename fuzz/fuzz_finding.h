// A finding of a fuzz target's own: the code under test broke a promise that
// no crash or sanitizer shows (an unsound table accepted, a frame outside
// its capture). Printed and aborted, so that libFuzzer keeps the input.
#pragma once
#include <cstdio>
#include <cstdlib>
#include <string>

namespace qx::fuzz {

[[noreturn]] inline void finding(const std::string& what) {
    std::fprintf(stderr, "FINDING: %s\n", what.c_str());
    std::abort();
}

}  // namespace qx::fuzz
