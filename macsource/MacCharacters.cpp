// What the platform's tables know of characters.
#include "host/Characters.h"

#include "ZVLibInternal.h"

char32_t OS_Character_Without_Accents(char32_t character)
{
    return Character_Without_Accents(character);
}
