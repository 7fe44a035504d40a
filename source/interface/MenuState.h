// Check marks, as calls and choices set them.
#pragma once

#include "MenuTree.h"

/// Checks an entry; the other members of its exclusion set, looked for from the top of its tree, lose theirs.
void Check_Menu(ZVMenu& menu);

void Uncheck_Menu(ZVMenu& menu);  ///< Nothing for a member of an exclusion set.
