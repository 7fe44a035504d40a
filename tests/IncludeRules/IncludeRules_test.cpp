// Who may include what: dependencies point one way only, and third-party headers stay where they are wrapped.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;

namespace {

fs::path const root = ZV_SOURCE_DIR;

/// Folders of source in their order: each leans on itself and on those in front of it.
constexpr std::array layers = {"foundation", "threads",   "files",   "pixels", "clips",
                               "formats",    "interface", "gadgets", "dialogs"};

/// Headers of the C library that are no part of the C++ standard and that the portable code may use.
constexpr std::array portableHeaders = {"strings.h"};

/// Headers of the C library, the compiler and the kernel, for the desktop layer: by folder and by name.
constexpr std::array systemFolders = {"sys/", "linux/", "net/", "netinet/", "arpa/"};
constexpr std::array systemHeaders = {
    "cpuid.h",   "dirent.h",  "dlfcn.h", "errno.h",    "fcntl.h",     "fnmatch.h", "ftw.h",
    "glob.h",    "grp.h",     "iconv.h", "langinfo.h", "limits.h",    "malloc.h",  "mntent.h",
    "poll.h",    "pthread.h", "pwd.h",   "sched.h",    "semaphore.h", "signal.h",  "spawn.h",
    "strings.h", "termios.h", "time.h",  "unistd.h",
};

struct Include {
    std::string from;  ///< file that includes, relative to the root
    std::string what;
    bool isQuoted;
};

/// First folder of a relative path, and for source the second one.
struct Place {
    std::string top;
    std::string layer;
};

Place Place_Of(fs::path const& relative)
{
    Place place;
    auto part = relative.begin();
    if (part != relative.end()) place.top = *part++;
    if (part != relative.end()) place.layer = *part;
    return place;
}

/// The file of the tree that a quoted name means, relative to the root; nothing for a name of no file, such
/// as one that the build makes.
std::optional<fs::path> Resolve(Include const& include)
{
    fs::path const candidates[] = {fs::path(include.from).parent_path() / include.what,
                                   "source" / fs::path(include.what), "include" / fs::path(include.what),
                                   "resources" / fs::path(include.what), include.what};
    for (fs::path const& candidate : candidates)
        if (fs::exists(root / candidate)) return candidate.lexically_normal();
    return std::nullopt;
}

auto Layer_Rank(std::string_view layer)
{
    return std::ranges::find(layers, layer) - layers.begin();
}

bool Is_Standard(std::string_view header)
{
    return header.find_first_of("./") == header.npos;
}

bool Is_System_Header(std::string_view header)
{
    return std::ranges::find(systemHeaders, header) != systemHeaders.end() ||
           std::ranges::any_of(systemFolders, [=](char const* folder) { return header.starts_with(folder); });
}

bool May_Use_System_Header(Place const& from, std::string const& header)
{
    if (Is_Standard(header)) return true;
    if (from.top == "host" || from.top == "modules") return true;
    if (from.top == "macsource") return Is_System_Header(header);
    if (from.top == "source" && from.layer == "pixels" && header.starts_with("hwy/")) return true;
    return from.top != "include" && std::ranges::find(portableHeaders, header) != portableHeaders.end();
}

bool May_Use_Own_Header(Place const& from, Place const& target)
{
    if (target.top == from.top && from.top != "source") return true;
    if (target.top == "include") return from.top != "host";
    if (from.top == "source")
        return target.top == "resources" ||
               (target.top == "source" && Layer_Rank(target.layer) <= Layer_Rank(from.layer));
    if (from.top == "macsource") return target.top == "host" || target.top == "source";
    if (from.top == "zvclasses") return target.top == "source";
    return false;
}

bool Is_Allowed(Include const& include)
{
    Place const from = Place_Of(include.from);
    // Highway compiles a file several times by including it through a macro header of its own.
    if (!include.isQuoted || include.what.starts_with("hwy/"))
        return May_Use_System_Header(from, include.what);
    std::optional<fs::path> const target = Resolve(include);
    return target && May_Use_Own_Header(from, Place_Of(*target));
}

/// The name in an include line with its delimiters; empty for any other line.
std::string Included_Name(std::string line)
{
    std::erase_if(line, [](char c) { return c == ' ' || c == '\t'; });
    std::string_view const directive = "#include";
    if (!line.starts_with(directive)) return {};
    std::size_t const end = line.find_first_of(">\"", directive.size() + 1);
    bool const isName = line.find_first_of("<\"") == directive.size() && end != line.npos;
    return isName ? line.substr(directive.size(), end - directive.size() + 1) : std::string();
}

std::vector<Include> Includes_Of(fs::path const& file)
{
    std::vector<Include> includes;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        std::string const name = Included_Name(line);
        if (name.empty()) continue;
        includes.push_back(
            {fs::relative(file, root).string(), name.substr(1, name.size() - 2), name.front() == '"'});
    }
    return includes;
}

bool Is_Source_File(fs::path const& file)
{
    return file.extension() == ".h" || file.extension() == ".cpp" || file.extension() == ".inc";
}

}  // namespace

TEST(IncludeRules, TheRulesTellRightFromWrong)
{
    struct {
        char const *from, *what;
        bool isQuoted, isAllowed;
    } const rows[] = {
        {"source/pixels/A.cpp", "vector", false, true},
        {"source/pixels/A.cpp", "hwy/highway.h", false, true},
        {"source/pixels/A.cpp", "hwy/foreach_target.h", true, true},
        {"source/clips/A.cpp", "hwy/highway.h", false, false},
        {"source/clips/A.cpp", "ZVLib.h", true, true},
        {"source/clips/A.cpp", "foundation/Style.h", true, true},
        {"source/foundation/A.cpp", "Style.h", true, true},
        {"source/foundation/A.cpp", "../../host/Fonts.h", true, false},
        {"source/foundation/A.cpp", "../../macsource/MacText.h", true, false},
        {"source/formats/A.cpp", "png.h", false, false},
        {"source/files/A.cpp", "sys/stat.h", false, false},
        {"source/files/A.cpp", "NoSuchFile.h", true, false},
        {"macsource/A.cpp", "host/Fonts.h", true, true},
        {"macsource/A.cpp", "foundation/Style.h", true, true},
        {"macsource/A.cpp", "sys/stat.h", false, true},
        {"macsource/A.cpp", "ft2build.h", false, false},
        {"macsource/A.cpp", "fontconfig/fontconfig.h", false, false},
        {"host/A.cpp", "hb-ft.h", false, true},
        {"modules/Name/A.cpp", "OpenImageIO/imageio.h", false, true},
        {"modules/Name/A.cpp", "ZVModule.h", true, true},
        {"modules/Name/A.cpp", "foundation/Style.h", true, false},
        {"source/formats/A.cpp", "OpenImageIO/imageio.h", false, false},
        {"host/A.cpp", "Fonts.h", true, true},
        {"host/A.cpp", "foundation/Style.h", true, false},
        {"host/A.cpp", "ZVLib.h", true, false},
        {"zvclasses/foundation/A.h", "foundation/Style.h", true, true},
        {"zvclasses/foundation/A.h", "../../host/Fonts.h", true, false},
        {"zvclasses/foundation/A.h", "SDL2/SDL.h", false, false},
        {"include/A.h", "ZVBase.h", true, true},
        {"include/A.h", "foundation/Style.h", true, false},
        {"include/A.h", "png.h", false, false},
    };
    for (auto const& row : rows)
        EXPECT_EQ(Is_Allowed({row.from, row.what, row.isQuoted}), row.isAllowed)
            << row.from << ' ' << row.what;
    EXPECT_TRUE(May_Use_Own_Header({"source", "formats"}, {"source", "clips"}));
    EXPECT_FALSE(May_Use_Own_Header({"source", "pixels"}, {"source", "clips"}));
    EXPECT_FALSE(May_Use_Own_Header({"source", "formats"}, {"source", "dialogs"}));
}

TEST(IncludeRules, LinesThatIncludeAreKnown)
{
    EXPECT_EQ(Included_Name("#include <vector>"), "<vector>");
    EXPECT_EQ(Included_Name("  #  include \"host/Fonts.h\"  // why"), "\"host/Fonts.h\"");
    EXPECT_EQ(Included_Name("#include FT_FREETYPE_H"), "");
    EXPECT_EQ(Included_Name("// #include <vector>"), "");
}

TEST(IncludeRules, EveryFileKeepsThem)
{
    int files = 0;
    for (char const* top : {"include", "source", "macsource", "host", "modules", "zvclasses"}) {
        if (!fs::exists(root / top)) continue;
        for (fs::directory_entry const& entry : fs::recursive_directory_iterator(root / top)) {
            if (!Is_Source_File(entry.path())) continue;
            ++files;
            for (Include const& include : Includes_Of(entry.path()))
                EXPECT_TRUE(Is_Allowed(include)) << include.from << " includes " << include.what;
        }
    }
    EXPECT_GT(files, 30);
}
