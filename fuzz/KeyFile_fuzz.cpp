// Key files, read into a chain of two sections: the tables that come out of them end where they should.
#include "interface/KeyFile.h"

#include "ZVLibInternal.h"

#include <cstdlib>
#include <vector>

static ZVKeyCommand const commands[] = {{"Save", 10}, {"Load", 11}, {"a", 65537}, {nullptr, 0}};

/// The number of bindings; no key has two.
static std::size_t Count_Bindings(ZVKeySection const& section)
{
    std::size_t count = 0;
    for (auto const* binding = section.bindings; binding && *binding; binding += BindingSize, ++count)
        for (auto const* earlier = section.bindings; earlier != binding; earlier += BindingSize)
            if (*earlier == *binding) std::abort();
    return count;
}

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    static ZVEnvironment* const environment =
        InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 1, 0);
    if (!environment) std::abort();
    SetErrorModeZV(ZV_ERRORMODE_NO);
    // A block of its own, so that a read beyond its end is seen.
    std::vector<char> const text(data, data + size);
    ZVKeySection other{.name = "Other", .commands = commands};
    ZVKeySection main{.next = &other, .name = "Main", .commands = commands};
    Parse_Key_Text({text.data(), text.size()}, &main);
    Parse_Key_Text({text.data(), text.size()}, &main);
    if (Count_Bindings(main) + Count_Bindings(other) > size) std::abort();
    CleanupKeySectionZV(&main);
    return 0;
}
