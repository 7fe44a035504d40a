// Parsing of string files and of the headers they name (the form is told in ZVString.h). It works on memory
// alone, so that tests and the fuzzer reach it without a file. Views point into the texts given, which must
// outlive them. Text behind a zero byte is not read. Running out of memory throws std::bad_alloc.
#pragma once

#include "ZVBase.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// What is wrong in a file: the string id of a message, and the name that the message tells.
struct StringFault {
    unsigned long message;
    std::string name;
};

/// The numbers of a header by their symbolic names.
using StringSymbols = std::unordered_map<std::string_view, uint32_t>;

/// One `#define NAME "text"` of a string file.
struct StringEntry {
    uint32_t id;
    std::string_view name;
    std::string_view quoted;  ///< between the quotes, escapes as they stand in the file
};

// Each parser answers false when the load has to fail; the reason is then the last of the faults.

/// The name in the first `#include` of a string file, escapes resolved.
ZV_API bool Find_String_Header(std::string_view file, std::string& header, std::vector<StringFault>& faults);

/// The names that a header defines and enumerates. Of two numbers for a name the first one counts.
ZV_API bool Parse_String_Header(std::string_view header, StringSymbols& symbols,
                                std::vector<StringFault>& faults);

/// The entries of a string file, in its order. An entry with an unknown name is left out and noted as a
/// fault.
ZV_API bool Parse_String_Entries(std::string_view file, StringSymbols const& symbols,
                                 std::vector<StringEntry>& entries, std::vector<StringFault>& faults);

/// Writes a quoted text with its escapes resolved, without closing it.
/// @param out  at least as many bytes as `quoted`, or null to measure
/// @return  the length of the result
ZV_API std::size_t Resolve_Escapes(std::string_view quoted, char* out);
