// Key bindings: a text file in sections, which users may edit, ties keys to the actions of an application. A
// key press that nobody took is looked up and comes back as an action event. Main thread only.
//
//     // Text tools
//     Section Main
//     if Linux
//     CONTROL s Save
//     else
//     COMMAND s Save
//     endif
//     F5 Refresh 2
//
// A line is a comment, a section, part of a conditional, or a binding: modifiers (COMMAND, ALT or OPTION,
// CONTROL, SHIFT), a key (one character, "space", or a name such as F5 or PAGEUP; an upper-case letter means
// shift), the name of an action and an optional number. Case does not matter in keywords.
#pragma once

#include "ZVBase.h"

/// Key codes of named keys; a printable key's code is its lower-case character.
enum ZVKeyCode : uint16_t {
    ZV_KEY_F1 = 288,  ///< to ZV_KEY_F1 + 14, which is F15
    ZV_KEY_LEFT = 303,
    ZV_KEY_RIGHT = 304,
    ZV_KEY_UP = 305,
    ZV_KEY_DOWN = 306,
    ZV_KEY_HELP = 307,
    ZV_KEY_DELETE = 308,
    ZV_KEY_BACKSPACE = 309,
    ZV_KEY_ENTER = 310,
    ZV_KEY_HOME = 311,
    ZV_KEY_END = 312,
    ZV_KEY_TAB = 313,
    ZV_KEY_PAGE_UP = 314,
    ZV_KEY_PAGE_DOWN = 315,
    ZV_KEY_ESCAPE = 316,
    ZV_KEY_RETURN = 317,
    ZV_KEY_CAPS_LOCK = 318,
    ZV_KEY_INSERT = 319
};

/// A name of a section's actions. A table ends with a null name.
struct ZVKeyCommand {
    char const* name;
    uint32_t action;
};

/// The same by string id. A table ends with a string id of 0.
struct ZVKeyCommandId {
    uint32_t nameId;
    uint32_t action;
};

/// A section, declared by the application, which owns it. Its bindings are triples of a key (a code with the
/// modifiers ZV_MOD_CONTROL, SHIFT, ALT and COMMAND), an action and a number for the application; a key of 0
/// ends them.
struct ZVKeySection {
    ZVKeySection* next = nullptr;                ///< tried after this one; null ends the chain
    char const* name = nullptr;                  ///< in the file, or null
    uint32_t nameId = 0;                         ///< string id of the name, when that is null
    ZVKeyCommand const* commands = nullptr;      ///< or null
    ZVKeyCommandId const* commandIds = nullptr;  ///< used when `commands` is null
    unsigned short const* bindings = nullptr;    ///< of the file, or a table of the application's own
    void* block = nullptr;                       ///< holds a file's bindings; of the chain's head
    void (*callback)(ZVEvent*) = nullptr;  ///< gets this section's actions in place of the application's
};

/// Frees what the chain holds of a file and reads the named file of the home directory into it.
ZV_API void SetKeyFileZV(char const* name, ZVKeySection* section);

/// Frees what the chain holds of a file; its sections have no bindings then.
ZV_API void CleanupKeySectionZV(ZVKeySection* section);

/// The action of the first binding along the chain that has one; 0 when there is none.
ZV_API long GetKeyActionZV(ZVKeySection const* section, long key, unsigned long modifiers);

/// Sends the action bound to a key along the chain. 1 when a binding fired or belongs to a disabled menu
/// item; 0 for none, for a key release and without a section.
ZV_API long ProcessKeyEventZV(ZVKeySection* section, long key, unsigned long modifiers);
