// The parser of string files and headers, on memory.
#include "foundation/StringFile.h"

#include <gtest/gtest.h>
#include <map>

namespace {
/// What a pair of texts gives: the entries as "id=text" in the file's order, and the faults as "message
/// name".
struct Outcome {
    bool isGood = false;
    std::string header;
    std::string entries;
    std::string faults;
};
}  // namespace

static std::string Resolved(std::string_view quoted)
{
    std::string text(quoted.size(), '\0');
    text.resize(Resolve_Escapes(quoted, text.data()));
    EXPECT_EQ(text.size(), Resolve_Escapes(quoted, nullptr));
    return text;
}

static Outcome Parse(std::string_view file, std::string_view header)
{
    Outcome outcome;
    std::vector<StringFault> faults;
    StringSymbols symbols;
    std::vector<StringEntry> entries;
    outcome.isGood = Find_String_Header(file, outcome.header, faults) &&
                     Parse_String_Header(header, symbols, faults) &&
                     Parse_String_Entries(file, symbols, entries, faults);
    for (StringEntry const& entry : entries)
        outcome.entries += std::to_string(entry.id) + "=" + Resolved(entry.quoted) + ";";
    for (StringFault const& fault : faults)
        outcome.faults += std::to_string(fault.message) + " " + fault.name + ";";
    return outcome;
}

/// The header's names and numbers in the order of the names, or "failed".
static std::string Symbols(std::string_view header)
{
    StringSymbols symbols;
    std::vector<StringFault> faults;
    if (!Parse_String_Header(header, symbols, faults))
        return "failed " + std::to_string(faults.back().message);
    std::string text;
    for (auto const& [name, value] : std::map<std::string_view, uint32_t>(symbols.begin(), symbols.end()))
        text += std::string(text.empty() ? "" : " ") + std::string(name) + "=" + std::to_string(value);
    return text;
}

static std::string const include = "#include \"h\"\n";
static std::string const longest(127, 'n');

TEST(StringFile, HeadersDefineAndEnumerate)
{
    struct {
        char const* why;
        std::string header;
        std::string symbols;
    } const rows[] = {
        {"nothing", "", ""},
        {"definitions, with free text around", "x #define A 5 y\r#define\tB\t-1 // z", "A=5 B=4294967295"},
        {"a keyword counts in a comment and behind other letters", "// #define A 5\nq#define B 6", "A=5 B=6"},
        {"but not without white space behind it", "#defined A 5\n#define_B 6", ""},
        {"the first number of a name holds", "#define A 1\n#define A 2\nenum { A = 3 }", "A=1"},
        {"case counts", "#define a 1\n#define A 2", "A=2 a=1"},
        {"32 bits, signed or not", "#define A 4294967295\n#define B -2147483648",
         "A=4294967295 B=2147483648"},
        {"a number that does not fit is none", "#define A 4294967296", "failed 124"},
        {"nor is one of a hundred digits", "#define A 1" + std::string(100, '0'), "failed 124"},
        {"a sign alone is none", "#define A +", "failed 124"},
        {"two signs neither", "#define A +-1", "failed 124"},
        {"a plus is fine", "#define A +1", "A=1"},
        {"no number", "#define A B", "failed 124"},
        {"no name", "#define \n", "failed 124"},
        {"a number as a name only", "#define 5", "failed 124"},
        {"the longest name", "#define " + longest + " 1", longest + "=1"},
        {"a longer name", "#define " + longest + "n 1", "failed 124"},
        {"an enum counts from 0", "enum { A, B = 10, C }", "A=0 B=10 C=11"},
        {"the next one starts again", "enum { A, B };\nenum { C, };", "A=0 B=1 C=0"},
        {"with a name, a type and tight commas", "enum class N : long\n{A,B=3,C}", "A=0 B=3 C=4"},
        {"comments run to the line end", "enum { // A,\n B // }\n, C = // x\n }", "failed 124"},
        {"comments anywhere else", "enum { // A,\n B // }\n, C// = 5,\n=7 // ,\n,D//\r}", "B=0 C=7 D=8"},
        {"a number goes on below zero", "enum { A = -1, B }", "A=4294967295 B=0"},
        {"what follows a number is passed over", "enum { A = 2 << 1, B }", "A=2 B=3"},
        {"empty places count for nothing", "enum { , A,, =5, B }", "A=0 B=5"},
        {"an enum without an end", "enum { A, B", "A=0 B=1"},
        {"an enum without a brace", "enum A, B", ""},
        {"a long name in an enum", "enum { " + longest + "n }", "failed 124"},
        {"text behind a zero byte is not read", std::string("#define A 1\0#define B 2", 23), "A=1"},
    };
    for (auto const& row : rows)
        EXPECT_EQ(Symbols(row.header), row.symbols) << row.why;
}

TEST(StringFile, EntriesTakeTheirTextFromTheLine)
{
    std::string const header = "enum { A = 1, B, C }";
    struct {
        char const* why;
        std::string lines;
        std::string entries;
    } const rows[] = {
        {"nothing", "", ""},
        {"all line ends", "#define A \"a\"\r#define B \"b\"\r\n#define C \"c\"", "1=a;2=b;3=c;"},
        {"free text around", "x #define A y \"a\" z \"w\"", "1=a;"},
        {"an empty text", "#define A \"\"", "1=;"},
        {"escapes", R"(#define A "one\ntwo \"quoted\"")", "1=one\ntwo \"quoted\";"},
        {"other backslashes stand for themselves",
         R"(#define A "C:\temp\\x\")"
         "\"",
         "1=C:\\temp\\\\x\";"},
        {"a backslash at the end of the text", R"(#define A "\a" B)", "1=\\a;"},
        {"quotes behind a backslash do not open", R"(#define A \" "a")", "1=a;"},
        {"a keyword in a comment counts", "// #define A \"a\"", "1=a;"},
        {"two on a line", "#define A \"a\" #define B \"b\"", "1=a;2=b;"},
        {"a keyword inside a text does not", "#define A \"see #define B x\"", "1=see #define B x;"},
        {"the same name twice", "#define A \"a\"\n#define A \"b\"", "1=a;1=b;"},
        {"text in another encoding", "#define A \"\303\244\377\"", "1=\303\244\377;"},
    };
    for (auto const& row : rows) {
        Outcome const outcome = Parse(include + row.lines, header);
        EXPECT_TRUE(outcome.isGood) << row.why;
        EXPECT_EQ(outcome.entries, row.entries) << row.why;
        EXPECT_EQ(outcome.faults, "") << row.why;
    }
}

TEST(StringFile, FaultsAreNamed)
{
    std::string const header = "enum { A = 1, B }";
    struct {
        char const* why;
        std::string file;
        bool isGood;
        std::string faults;
    } const rows[] = {
        {"empty", "", false, "122 ;"},
        {"no white space behind the keyword", "#include\"h\"", false, "122 ;"},
        {"no name", "#include \n\"h\"", false, "123 ;"},
        {"one quote", "#include \"h\n\"", false, "123 ;"},
        {"only the first counts", "#include <h>\n#include \"h\"", false, "123 ;"},
        {"no name to define", include + "#define \n\"a\"", false, "124 ;"},
        {"a name that is too long", include + "#define " + longest + "n \"a\"", false, "124 ;"},
        {"an unknown name is no end", include + "#define X \"x\"\n#define A \"a\"", true, "125 X;"},
        {"nor is one without a text", include + "#define X\n#define A \"a\"", true, "125 X;"},
        {"its text is passed over", include + "#define X \"#define A\"\n#define A \"a\"", true, "125 X;"},
        {"no text", include + "#define A\n\"a\"", false, "126 A;"},
        {"a text that does not end", include + "#define A \"a\\\"\n\"", false, "126 A;"},
        {"unknown, then no text", include + "#define X \"x\"\n#define A", false, "125 X;126 A;"},
    };
    for (auto const& row : rows) {
        Outcome const outcome = Parse(row.file, header);
        EXPECT_EQ(outcome.isGood, row.isGood) << row.why;
        EXPECT_EQ(outcome.faults, row.faults) << row.why;
        EXPECT_EQ(outcome.entries, row.isGood ? "1=a;" : "") << row.why;
    }
}

TEST(StringFile, TheHeaderIsNamedInTheFirstInclude)
{
    EXPECT_EQ(Parse("// #include \"Locale\\Text.h\" \"b\"\n#include \"c\"", "").header, "Locale\\Text.h");
    EXPECT_EQ(Parse("#include \"a \\\"b\\\"\"", "").header, "a \"b\"");
}

TEST(StringFile, FilesCutShortAnywhereEndInSuccessOrAFault)
{
    std::string const file = include + "#define A \"a\"\r\n#define B \"b\\n\"\n";
    std::string const header = "#define A 1\nenum E { B = 5, C } // x\n";
    for (std::size_t length = 0; length <= file.size(); ++length) {
        // A copy of its own size lets a sanitizer see every read beyond the end.
        std::vector<char> const cut(file.begin(), file.begin() + static_cast<long>(length));
        Outcome const outcome = Parse({cut.data(), cut.size()}, header);
        EXPECT_NE(outcome.isGood, !outcome.faults.empty()) << length;
    }
    for (std::size_t length = 0; length <= header.size(); ++length) {
        std::vector<char> const cut(header.begin(), header.begin() + static_cast<long>(length));
        Parse(file, {cut.data(), cut.size()});
    }
}
