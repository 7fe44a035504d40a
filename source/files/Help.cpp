// Help pages, shown by the desktop's browser.
#include "SpecText.h"

#include "ZVLibInternal.h"

#include "Locale/ZVLibStr.h"

#include <climits>
#include <new>
#include <string>
#include <string_view>

/// What stands for itself in the path of an address.
static bool Is_Plain(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("/-._~").find(c) != std::string_view::npos;
}

static std::string File_URL(std::string_view path)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string url = "file://";
    for (char c : path) {
        auto const byte = static_cast<unsigned char>(c);
        if (Is_Plain(c))
            url += c;
        else
            url.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
    return url;
}

long HelpZV(char const* name, TagItem*)
{
    if (!name || !ZVEnv) return 0;
    SpecText const page = SpecText(ZVEnv->homeDir, "Help\\").Append(name);
    char path[PATH_MAX];
    if (!FileExistsZV(page.Text()) || !OS_Native_Path(page.Text(), path, sizeof path)) {
        UserMessageZV(ZVSTR_NO_HELP);
        return 0;
    }
    try {
        if (OS_Open_URL(File_URL(path).c_str())) return 1;
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
    }
    UserMessageZV(ZVSTR_NO_BROWSER);
    return 0;
}
