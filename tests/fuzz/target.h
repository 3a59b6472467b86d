#pragma once

#include <cstddef>
#include <cstdint>

// The function of each target, named by libFuzzer and called with one input after another. Returns 0; aborts
// or crashes on a finding.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
