// Names go through the library's grammar, so that zvclip finds what the library finds.
#include "Series.h"

#include <ZVLib.h>

#include <algorithm>

namespace fs = std::filesystem;

bool Is_Series(std::string const& path)
{
    return SequenceDigitsZV(fs::path(path).filename().c_str()) > 0;
}

/// The name of the series that a file belongs to; empty for a file without a number.
static std::string Series_Of(std::string const& file)
{
    if (file.size() + 3 > ZV_SPEC_SIZE) return {};
    char name[ZV_SPEC_SIZE] = {};
    file.copy(name, file.size());
    return FileNameToSequenceNameZV(name) ? name : "";
}

std::vector<fs::path> Series_Files(fs::path const& series)
{
    std::string const name = series.filename().string();
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::directory_iterator entry(series.has_parent_path() ? series.parent_path() : fs::path("."), error),
         end;
         !error && entry != end; entry.increment(error)) {
        std::string const found = Series_Of(entry->path().filename().string());
        if (!found.empty() && SequenceCmpZV(found.c_str(), name.c_str()) == 0) files.push_back(entry->path());
    }
    auto const number = [](fs::path const& file) { return NameToSequenceNumberZV(file.filename().c_str()); };
    std::ranges::sort(files, {}, number);
    return files;
}
