// The parser of string files: a view of the text that is left serves as the cursor everywhere, so no step can
// read beyond the end.
#include "foundation/StringFile.h"

#include "Locale/ZVLibStr.h"

#include <charconv>
#include <cstdint>

static constexpr std::size_t MaxNameLength = 127;

static bool Is_White_Space(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

static std::string_view Text_Of(std::string_view file)
{
    return file.substr(0, file.find('\0'));
}

static void Skip_White_Space(std::string_view& rest)
{
    while (!rest.empty() && Is_White_Space(rest.front()))
        rest.remove_prefix(1);
}

/// Moves behind the next keyword that white space or the end of the text follows.
static bool Pass_Keyword(std::string_view& rest, std::string_view keyword)
{
    do {
        std::size_t const found = rest.find(keyword);
        if (found == rest.npos) return false;
        rest.remove_prefix(found + keyword.size());
    } while (!rest.empty() && !Is_White_Space(rest.front()));
    return true;
}

static std::string_view Take_Line(std::string_view& rest)
{
    std::size_t const length = std::min(rest.find_first_of("\r\n"), rest.size());
    std::string_view const line = rest.substr(0, length);
    rest.remove_prefix(std::min(length + 1, rest.size()));
    return line;
}

static std::string_view Take_Word(std::string_view& rest)
{
    Skip_White_Space(rest);
    std::size_t length = 0;
    while (length < rest.size() && !Is_White_Space(rest[length]))
        ++length;
    std::string_view const word = rest.substr(0, length);
    rest.remove_prefix(length);
    return word;
}

/// Reads a decimal number as scanf does, but refuses one that does not fit 32 bits, signed or unsigned.
static bool Take_Number(std::string_view& rest, uint32_t& number)
{
    Skip_White_Space(rest);
    if (rest.starts_with('+') && !rest.starts_with("+-")) rest.remove_prefix(1);
    int64_t value = 0;
    auto const [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
    if (error != std::errc() || value < INT32_MIN || value > UINT32_MAX) return false;
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    number = static_cast<uint32_t>(value);
    return true;
}

/// The next double quote that no backslash precedes.
static std::size_t Find_Quote(std::string_view line, std::size_t from)
{
    std::size_t found = line.find('"', from);
    while (found != line.npos && found > 0 && line[found - 1] == '\\')
        found = line.find('"', found + 1);
    return found;
}

/// Takes the quoted text of a line and moves behind its closing quote; stays where it is when none is
/// complete.
static bool Take_Quoted(std::string_view& line, std::string_view& quoted)
{
    std::size_t const open = Find_Quote(line, 0);
    if (open == line.npos) return false;
    std::size_t const close = Find_Quote(line, open + 1);
    if (close == line.npos) return false;
    quoted = line.substr(open + 1, close - open - 1);
    line.remove_prefix(close + 1);
    return true;
}

static bool Is_Name(std::string_view word)
{
    return !word.empty() && word.size() <= MaxNameLength;
}

static bool Fail(std::vector<StringFault>& faults, unsigned long message, std::string_view name = {})
{
    faults.push_back({message, std::string(name)});
    return false;
}

bool Find_String_Header(std::string_view file, std::string& header, std::vector<StringFault>& faults)
{
    std::string_view rest = Text_Of(file);
    if (!Pass_Keyword(rest, "#include")) return Fail(faults, ZVSTR_NO_INCLUDE);
    std::string_view line = Take_Line(rest);
    std::string_view quoted;
    if (!Take_Quoted(line, quoted)) return Fail(faults, ZVSTR_BAD_INCLUDE);
    header.resize(quoted.size());
    header.resize(Resolve_Escapes(quoted, header.data()));
    return true;
}

static bool Take_Defines(std::string_view rest, StringSymbols& symbols)
{
    while (Pass_Keyword(rest, "#define")) {
        std::string_view const name = Take_Word(rest);
        uint32_t value = 0;
        if (!Is_Name(name) || !Take_Number(rest, value)) return false;
        symbols.try_emplace(name, value);
    }
    return true;
}

static void Skip_Comments(std::string_view& rest)
{
    for (Skip_White_Space(rest); rest.starts_with("//"); Skip_White_Space(rest))
        Take_Line(rest);
}

static std::string_view Take_Enum_Name(std::string_view& rest)
{
    std::size_t length = 0;
    while (length < rest.size() && !Is_White_Space(rest[length]) &&
           std::string_view(",=}").find(rest[length]) == rest.npos && !rest.substr(length).starts_with("//"))
        ++length;
    std::string_view const name = rest.substr(0, length);
    rest.remove_prefix(length);
    return name;
}

/// Moves behind the next comma, or to the brace that ends the enum.
static void Skip_Enumerator(std::string_view& rest)
{
    for (Skip_Comments(rest); !rest.empty() && rest.front() != '}'; Skip_Comments(rest)) {
        bool const isComma = rest.front() == ',';
        rest.remove_prefix(1);
        if (isComma) return;
    }
}

/// Reads the names behind an opening brace and moves behind the closing one.
static bool Take_Enumerators(std::string_view& rest, StringSymbols& symbols)
{
    uint32_t value = 0;
    for (Skip_Comments(rest); !rest.empty() && rest.front() != '}'; Skip_Comments(rest)) {
        std::string_view const name = Take_Enum_Name(rest);
        if (name.size() > MaxNameLength) return false;
        Skip_Comments(rest);
        if (rest.starts_with('=')) {
            rest.remove_prefix(1);
            if (!Take_Number(rest, value)) return false;
        }
        if (!name.empty()) symbols.try_emplace(name, value++);
        Skip_Enumerator(rest);
    }
    if (!rest.empty()) rest.remove_prefix(1);
    return true;
}

static bool Take_Enums(std::string_view rest, StringSymbols& symbols)
{
    while (Pass_Keyword(rest, "enum")) {
        std::size_t const brace = rest.find('{');
        if (brace == rest.npos) return true;
        rest.remove_prefix(brace + 1);
        if (!Take_Enumerators(rest, symbols)) return false;
    }
    return true;
}

bool Parse_String_Header(std::string_view header, StringSymbols& symbols, std::vector<StringFault>& faults)
{
    std::string_view const text = Text_Of(header);
    if (Take_Defines(text, symbols) && Take_Enums(text, symbols)) return true;
    return Fail(faults, ZVSTR_BAD_DEFINE);
}

bool Parse_String_Entries(std::string_view file, StringSymbols const& symbols,
                          std::vector<StringEntry>& entries, std::vector<StringFault>& faults)
{
    std::string_view rest = Text_Of(file);
    while (!rest.empty()) {
        std::string_view line = Take_Line(rest);
        // What was read of an entry is passed over, so texts never overlap and take no more room than the
        // file.
        while (Pass_Keyword(line, "#define")) {
            std::string_view const name = Take_Word(line);
            if (!Is_Name(name)) return Fail(faults, ZVSTR_BAD_DEFINE);
            auto const symbol = symbols.find(name);
            std::string_view quoted;
            bool const hasText = Take_Quoted(line, quoted);
            if (symbol == symbols.end())
                Fail(faults, ZVSTR_UNKNOWN_NAME, name);
            else if (!hasText)
                return Fail(faults, ZVSTR_NO_TEXT, name);
            else
                entries.push_back({symbol->second, name, quoted});
        }
    }
    return true;
}

std::size_t Resolve_Escapes(std::string_view quoted, char* out)
{
    std::size_t length = 0;
    for (std::size_t i = 0; i < quoted.size(); ++i, ++length) {
        char c = quoted[i];
        char const following = i + 1 < quoted.size() ? quoted[i + 1] : '\0';
        if (c == '\\' && (following == 'n' || following == '"')) {
            c = following == 'n' ? '\n' : '"';
            ++i;
        }
        if (out) out[length] = c;
    }
    return length;
}
