// The parser of key files, on text in memory, and the look-up in the tables that it fills.
#pragma once

#include "ZVKey.h"

#include <cstddef>
#include <string_view>

/// The values of a binding by their places, in tables that begin with the first binding's key.
enum BindingPlace : std::size_t { BoundKey, BoundAction, BoundParameter, BindingSize };

/// Reads the text of a key file into a chain of sections, whose head is not null. The bindings are in one
/// block of the first section that has none yet. Problems are shown to the user and reading goes on.
ZV_API void Parse_Key_Text(std::string_view text, ZVKeySection* chain);

/// The binding of a key with an action; 0 for none.
/// @param key  code with modifier bits, as in a binding
long Action_Of_Key(ZVKeySection const& section, long key);

/// The key of a binding: the code, and of the modifiers those that bindings tell apart.
long Binding_Key(long key, unsigned long modifiers);
