// A libFuzzer program for the target FUZZ_TARGET.

#include "fuzz/FuzzTarget.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Quon::FUZZ_TARGET({data, size});
    return 0;
}
