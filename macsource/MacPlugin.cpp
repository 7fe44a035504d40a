// Code modules: shared objects, alone or in a bundle.
#include "ZVLibInternal.h"

#include <dlfcn.h>

#include <new>
#include <string>
#include <string_view>

/// The code of the bundle /dir/Name.kind is /dir/Name.kind/Contents/Linux/Name.
static std::string Code_Of_Bundle(std::string_view path)
{
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    std::string_view name = path.substr(path.rfind('/') + 1);
    name = name.substr(0, name.rfind('.'));
    return std::string(path).append("/Contents/Linux/").append(name);
}

void* OS_Open_Module(char const* path)
{
    return dlopen(path, RTLD_NOW | RTLD_GLOBAL);
}

void* OS_Open_Bundle(char const* path)
{
    try {
        return OS_Open_Module(Code_Of_Bundle(path).c_str());
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
}

void OS_Close_Module(void* module)
{
    if (module) dlclose(module);
}

ZVPluginProc OS_Find_Function(void* module, char const* symbol)
{
    return reinterpret_cast<ZVPluginProc>(dlsym(module, symbol));
}

char const* OS_Module_Error()
{
    char const* const error = dlerror();
    return error ? error : "";
}
