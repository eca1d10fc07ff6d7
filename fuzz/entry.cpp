// libFuzzer's entry point for one target; CNTR_FUZZ_TARGET names the target's function.
#include <cstddef>
#include <cstdint>

#include "targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return xn_fuzz::CNTR_FUZZ_TARGET(data, size);
}
