// The directories of the application, its user and the library, as file specs with a closing separator.
#include "ZVLibInternal.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>

static char const rootDir[] = "Root:\\";
static char const userDataName[] = "Brinmoor User Data\\";

/// A spec in its own block, closed by a separator; null for one that does not fit a spec buffer.
static char* Make_Dir_Spec(std::string spec)
{
    if (!spec.ends_with('\\')) spec += '\\';
    return spec.size() < ZV_SPEC_SIZE ? CopyFileSpecZV(spec.c_str()) : nullptr;
}

/// The spec of a native directory, existing or not. Null for a path that is not absolute or too long.
static char* Native_Dir_Spec(std::string_view path)
{
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    FSSpec place;
    char spec[ZV_SPEC_SIZE];
    if (path.size() >= sizeof place.path) return nullptr;
    place.path[path.copy(place.path, path.size())] = 0;
    return GetDOSPathZV(spec, &place) == 0 ? Make_Dir_Spec(spec) : nullptr;
}

/// A spec or classic path has a colon, and no slash ahead of it; a bar marks a text that no conversion
/// touches.
static bool Is_Spec(char const* text)
{
    std::size_t const plain = std::strcspn(text, ":/|");
    return text[plain] == ':' || text[plain] == '|';
}

/// The spec of a directory that a user named, as spec or native path; a relative path starts at the working
/// directory. Null for null, for an empty text and for one that cannot be a spec.
static char* Named_Dir_Spec(char const* text)
{
    if (!text || !*text) return nullptr;
    if (Is_Spec(text)) {
        char* spec = MakeFileSpecZV(text);
        char* result = spec ? Make_Dir_Spec(spec) : nullptr;
        FreeFileSpecZV(spec);
        return result;
    }
    std::error_code failure;
    std::filesystem::path const path = std::filesystem::absolute(text, failure);
    return failure ? nullptr : Native_Dir_Spec(path.lexically_normal().native());
}

/// The spec of `name` in a directory if it can be created there or exists, else null.
static char* Claim_User_Data_Dir(std::string const& parent)
{
    std::string const spec = parent + userDataName;
    return spec.size() < ZV_SPEC_SIZE && CreateDirZV(spec.c_str()) ? CopyFileSpecZV(spec.c_str()) : nullptr;
}

/// By KL_APP_DATA_DIR, else in the user's documents; null when neither can be had.
static char* Find_User_Data_Dir()
{
    if (char* named = Named_Dir_Spec(std::getenv("KL_APP_DATA_DIR"))) {
        char* claimed = Claim_User_Data_Dir(named);
        FreeFileSpecZV(named);
        if (claimed) return claimed;
    }
    char native[sizeof(FSSpec::path)];
    if (!OS_Get_User_Dir(native, sizeof native)) return nullptr;
    char* user = Native_Dir_Spec(native);
    if (!user) return nullptr;
    std::string const documents = std::string(user) + "Documents\\";
    FreeFileSpecZV(user);
    return FileExistsZV(documents.c_str()) ? Claim_User_Data_Dir(documents) : nullptr;
}

char* FindHomeDirZV()
{
    char native[sizeof(FSSpec::path)];
    char* spec = OS_Get_Program_Dir(native, sizeof native) ? Native_Dir_Spec(native) : nullptr;
    return spec ? spec : CopyFileSpecZV(rootDir);
}

char* FindUserDataDirZV()
{
    char* spec = Find_User_Data_Dir();
    return spec ? spec : FindHomeDirZV();
}

char* FindTempDirZV()
{
    char native[sizeof(FSSpec::path)];
    char* spec = OS_Get_Temp_Dir(native, sizeof native) ? Native_Dir_Spec(native) : nullptr;
    if (!spec) Assert_Fail(__FILE__, __LINE__);
    return spec;
}

void SetHomeDir()
{
    TagItem const* tag = FindTagItem(ZV_INIT_HOME_DIR, ZVEnv->initTags);
    char* named = tag ? Named_Dir_Spec(reinterpret_cast<char const*>(tag->data)) : nullptr;
    ZVEnv->homeDir = named ? named : FindHomeDirZV();
}

void SetUserDataDir()
{
    char* spec = Find_User_Data_Dir();
    ZVEnv->userDataDir = spec ? spec : CopyFileSpecZV(ZVEnv->homeDir);
}

char* Find_Library_Plugins()
{
    char native[sizeof(FSSpec::path)];
    char* library = OS_Get_Library_Dir(native, sizeof native) ? Native_Dir_Spec(native) : nullptr;
    std::string const plugins = library ? std::string(library) + "zvlib\\Plugins\\" : std::string();
    FreeFileSpecZV(library);
    bool const isThere = library && plugins.size() < ZV_SPEC_SIZE && FileExistsZV(plugins.c_str());
    return isThere ? CopyFileSpecZV(plugins.c_str()) : nullptr;
}

char* Find_Library_File(char const* name)
{
    char* home = ZVEnv ? CopyFileSpecZV(ZVEnv->homeDir) : FindHomeDirZV();
    std::string const own = std::string(home) + name;
    FreeFileSpecZV(home);
    if (FileExistsZV(own.c_str())) return CopyFileSpecZV(own.c_str());

    char native[sizeof(FSSpec::path)];
    char* data = OS_Get_Library_Data_Dir(native, sizeof native) ? Native_Dir_Spec(native) : nullptr;
    std::string const installed = data ? std::string(data) + name : std::string();
    FreeFileSpecZV(data);
    bool const found = data && FileExistsZV(installed.c_str());
    return CopyFileSpecZV(found ? installed.c_str() : own.c_str());
}
