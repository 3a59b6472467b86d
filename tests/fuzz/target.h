#pragma once

#include <cstddef>
#include <cstdint>

// Each target's one function, called with one input after the other; the name is the fuzzing engine's. It
// returns 0, and aborts or crashes at a finding.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
