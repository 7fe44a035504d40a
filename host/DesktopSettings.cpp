#include "DesktopSettings.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

namespace {

constexpr uint64_t UsualDoubleClick = 500;

std::string Config_Folder()
{
    if (char const* const config = std::getenv("XDG_CONFIG_HOME"); config && *config) return config;
    char const* const home = std::getenv("HOME");
    return std::string(home ? home : "") + "/.config";
}

/// The number of a line that begins with the key, blanks and one separator.
std::optional<int> Number_Of(std::string_view line, std::string_view key, char separator)
{
    if (!line.starts_with(key)) return std::nullopt;
    std::size_t const at = line.find_first_not_of(" \t", key.size());
    if (at == std::string_view::npos || line[at] != separator) return std::nullopt;
    std::size_t const digits = line.find_first_not_of(" \t", at + 1);
    if (digits == std::string_view::npos) return std::nullopt;
    int value = 0;
    auto const result = std::from_chars(line.data() + digits, line.data() + line.size(), value);
    return result.ec == std::errc() ? std::optional(value) : std::nullopt;
}

/// The text resources of the X display, which desktops keep their resolution in; empty when there are none.
std::string X_Resources()
{
    std::string text;
    if (Display* const display = XOpenDisplay(nullptr)) {
        if (char const* const found = XResourceManagerString(display)) text = found;
        XCloseDisplay(display);
    }
    return text;
}

}  // namespace

uint64_t Desktop_Double_Click_Milliseconds()
{
    struct Place {
        char const* file;
        char const* key;
    };
    constexpr Place places[] = {{"/gtk-4.0/settings.ini", "gtk-double-click-time"},
                                {"/gtk-3.0/settings.ini", "gtk-double-click-time"},
                                {"/kdeglobals", "DoubleClickInterval"}};
    for (Place const& place : places) {
        std::ifstream file(Config_Folder() + place.file);
        for (std::string line; std::getline(file, line);)
            if (auto const time = Number_Of(line, place.key, '='); time && *time > 0)
                return static_cast<uint64_t>(std::min(*time, 5000));
    }
    return UsualDoubleClick;
}

int X_Display_Scale()
{
    constexpr double usualResolution = 96;
    std::string const resources = X_Resources();
    for (std::size_t start = 0; start < resources.size();) {
        std::size_t const end = std::min(resources.find('\n', start), resources.size());
        auto const line = std::string_view(resources).substr(start, end - start);
        if (auto const resolution = Number_Of(line, "Xft.dpi", ':'))
            return std::clamp(static_cast<int>(std::lround(*resolution / usualResolution)), 1, 4);
        start = end + 1;
    }
    return 1;
}
