// The process-wide string table.
#include "ZVString.h"

#include "ZVEnvironment.h"
#include "ZVLibInternal.h"

#include <algorithm>

char* GetStringZV(unsigned long id)
{
    static char empty[1] = "";
    ZVStringTable const* table = ZVEnv ? ZVEnv->stringTable : nullptr;
    if (!table) return empty;
    auto const wanted = static_cast<uint32_t>(id);
    uint32_t* const end = table->ids + table->count;
    uint32_t* const found = std::lower_bound(table->ids, end, wanted);
    return found != end && *found == wanted ? table->texts[found - table->ids] : empty;
}
