// What the shared library exports: what its headers declare, and nothing else.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;

namespace {

/// Adds the identifiers of a header, comments left out, or only those on lines that export something.
void Add_Names(fs::path const& header, bool onlyExported, std::set<std::string>& names)
{
    std::ifstream lines(header);
    for (std::string line; std::getline(lines, line);) {
        line.resize(std::min(line.find("//"), line.size()));
        if (onlyExported && line.find("ZV_API") == line.npos) continue;
        std::ranges::replace_if(
            line, [](unsigned char c) { return !std::isalnum(c) && c != '_'; }, ' ');
        std::istringstream words(line);
        for (std::string word; words >> word;)
            names.insert(word);
    }
}

struct Declarations {
    std::set<std::string> open;   ///< in the public headers
    std::set<std::string> inner;  ///< exported by private headers to the library's own tests and fuzzers
};

Declarations Read_Declarations()
{
    Declarations declared;
    for (char const* top : {"include", "source", "macsource"}) {
        bool const isPublic = top == std::string("include");
        for (fs::directory_entry const& entry :
             fs::recursive_directory_iterator(fs::path(ZV_SOURCE_DIR) / top))
            if (entry.path().extension() == ".h")
                Add_Names(entry.path(), !isPublic, isPublic ? declared.open : declared.inner);
    }
    return declared;
}

/// Drops what stands in brackets, so that templates lose their arguments and functions their parameters.
std::string Without_Arguments(std::string const& symbol)
{
    std::string plain;
    int depth = 0;
    for (char c : symbol) {
        if (c == '<' || c == '(') ++depth;
        if (depth == 0) plain += c;
        if (c == '>' || c == ')') --depth;
    }
    return plain;
}

/// The parts of a symbol's qualified name, from a demangled line such as "void Space::Type<int>::Call(long)
/// const".
std::vector<std::string> Name_Parts(std::string const& symbol)
{
    std::istringstream words(Without_Arguments(symbol));
    std::string name;
    for (std::string word; words >> word;)
        if (word != "const" && word != "volatile" && !word.starts_with('[')) name = word;
    std::vector<std::string> parts;
    for (std::size_t start = 0; start <= name.size();) {
        std::size_t const end = std::min(name.find("::", start), name.size());
        std::string part = name.substr(start, end - start);
        if (part.starts_with('~')) part.erase(0, 1);
        parts.push_back(part);
        start = end + 2;
    }
    return parts;
}

bool Is_Intended(std::string const& symbol, Declarations const& declared)
{
    std::vector<std::string> const parts = Name_Parts(symbol);
    if (parts.front() == "std" || parts.front() == "hwy") return false;
    return declared.inner.contains(parts.front()) ||
           std::ranges::all_of(parts, [&](std::string const& part) { return declared.open.contains(part); });
}

/// Ends of sections, which the linker exports when a library that this one stands on asks for them.
bool Is_Of_Linker(std::string_view symbol)
{
    return symbol == "__bss_start" || symbol == "_edata" || symbol == "_end";
}

bool Is_Of_Sanitizer(std::string_view symbol)
{
    return std::ranges::any_of(
        std::array{"__asan", "__odr_asan", "__tsan", "__ubsan", "__sanitizer", "__sancov"},
        [=](char const* prefix) { return symbol.starts_with(prefix); });
}

/// Demangled names of what the library defines for others.
std::vector<std::string> Exported_Symbols()
{
    std::string const command = ZV_NM " --dynamic --defined-only --demangle '" ZV_LIBRARY "'";
    std::unique_ptr<FILE, int (*)(FILE*)> const output(popen(command.c_str(), "r"), pclose);
    std::vector<std::string> symbols;
    std::array<char, 16384> text{};
    while (output && std::fgets(text.data(), text.size(), output.get())) {
        std::istringstream line(text.data());
        std::string address, kind, symbol;
        line >> address >> kind;
        std::getline(line >> std::ws, symbol);
        if (!symbol.empty() && !Is_Of_Linker(symbol) && !Is_Of_Sanitizer(symbol)) symbols.push_back(symbol);
    }
    return symbols;
}

}  // namespace

TEST(ExportedSymbols, NamesAreFoundInDemangledSymbols)
{
    using Parts = std::vector<std::string>;
    EXPECT_EQ(Name_Parts("InitZV(void (*)(ZVEvent*), char const*, TagItem*)"), Parts{"InitZV"});
    EXPECT_EQ(Name_Parts("ZVEnv"), Parts{"ZVEnv"});
    EXPECT_EQ(Name_Parts("ZVPixelBase::_byteToFracTbl"), (Parts{"ZVPixelBase", "_byteToFracTbl"}));
    EXPECT_EQ(Name_Parts("void Crop_Bitmap<A<B<int>, 2ul>, C>(A<B<int>, 2ul>*, long)"), Parts{"Crop_Bitmap"});
    EXPECT_EQ(Name_Parts("ZVBitmap::~ZVBitmap()"), (Parts{"ZVBitmap", "ZVBitmap"}));
    EXPECT_EQ(Name_Parts("ZVReader::Length() const"), (Parts{"ZVReader", "Length"}));
    EXPECT_EQ(Name_Parts("typeinfo name for std::_Mutex_base<(__gnu_cxx::_Lock_policy)2>"),
              (Parts{"std", "_Mutex_base"}));
    Declarations const declared{{"std", "InitZV", "ZVBitmap"}, {"Unpacker"}};
    EXPECT_TRUE(Is_Intended("InitZV(std::string)", declared));
    EXPECT_TRUE(Is_Intended("Unpacker::Step(int)", declared));
    EXPECT_FALSE(Is_Intended("InitZV2()", declared));
    EXPECT_FALSE(Is_Intended("std::InitZV()", declared));
    EXPECT_FALSE(Is_Intended("ZVBitmap::Hidden()", declared));
}

TEST(ExportedSymbols, OnlyWhatTheHeadersDeclare)
{
    Declarations const declared = Read_Declarations();
    std::vector<std::string> const symbols = Exported_Symbols();
    EXPECT_GT(symbols.size(), 100U);
    for (std::string const& symbol : symbols)
        EXPECT_TRUE(Is_Intended(symbol, declared)) << symbol;
}
