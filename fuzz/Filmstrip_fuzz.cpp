// Filmstrip files: the input is the file.
#include "ClipFuzz.h"

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    Fuzz_Clip(ZV_FourCC("Film"), data, size, 1);
    return 0;
}
