// Measures of texts in the interface font.
#include "MacText.h"

#include "ZVLibInternal.h"

#include <cmath>
#include <cstring>

long Text_Width(char const* text)
{
    return text ? static_cast<long>(std::strlen(text)) * ZVEnv->style->fontSize / 2 : 0;
}

long Text_Height(char const*)
{
    return static_cast<long>(std::ceil(ZVEnv->style->fontSize * 1.2));
}

void Close_Fonts() {}
