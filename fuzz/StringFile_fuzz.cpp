// String files: the input is a string file and its header, parted by the first byte 255.
#include "foundation/StringFile.h"

#include <cstdlib>

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    std::string_view const input(reinterpret_cast<char const*>(data), size);
    std::size_t const parting = std::min(input.find('\xFF'), size);
    // Blocks of their own, so that a read beyond the end of either is seen.
    std::vector<char> const file(input.begin(), input.begin() + static_cast<long>(parting));
    std::vector<char> const header(input.begin() + static_cast<long>(std::min(parting + 1, size)),
                                   input.end());

    std::vector<StringFault> faults;
    std::string headerName;
    Find_String_Header({file.data(), file.size()}, headerName, faults);
    StringSymbols symbols;
    Parse_String_Header({header.data(), header.size()}, symbols, faults);
    std::vector<StringEntry> entries;
    Parse_String_Entries({file.data(), file.size()}, symbols, entries, faults);

    std::size_t textBytes = 0;
    std::vector<char> text;
    for (StringEntry const& entry : entries) {
        text.assign(Resolve_Escapes(entry.quoted, nullptr), '\0');
        if (Resolve_Escapes(entry.quoted, text.data()) != text.size()) std::abort();
        textBytes += text.size();
    }
    if (textBytes > file.size()) std::abort();
    return 0;
}
