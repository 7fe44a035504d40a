// Texts by number, and the small text helpers of the library.
//
// A string file is a text of lines `#define NAME "text"` whose names are given numbers by the header that its
// one `#include "header"` names, through `#define NAME 123` and `enum { A, B = 7, C }`. Everything else in
// both files is free text. In a quoted text \n is a line feed and \" a double quote; any other backslash
// stands for itself. Symbolic names hold at most 127 characters; a longer one counts as a bad definition. A
// keyword counts wherever white space follows it, also in a comment, but not inside the text of an entry. Ids
// are 32-bit numbers, a file ends at its first zero byte, and of two definitions of a name the first one
// holds.
//
// Loading belongs to the main thread; looking up may run on any thread while no load runs. The texts given to
// the helpers below are not null where a comment does not allow it.
#pragma once

#include "ZVBase.h"

/// One file's texts, each closed by a zero byte and padded to an even length; the bytes follow the record.
struct ZVStringBlock {
    ZVStringBlock* next;
    char* Text() { return reinterpret_cast<char*>(this + 1); }
};

/// The process-wide string table, null in the environment until the first file was read.
struct ZVStringTable {
    int32_t count;          ///< number of entries
    int32_t textBytes;      ///< bytes in all text blocks
    uint32_t* ids;          ///< `count` ids, ascending
    char** texts;           ///< `count` texts, parallel to `ids`
    ZVStringBlock* blocks;  ///< one for each file, kept for the table's life: texts never move
};

/// Reads a string file into the table. The name is relative to the home directory; a file that is not there
/// is looked for in the library's own data directory. A failure is shown by messages 121 to 126, sets the
/// error number and leaves the table as it was.
/// @param name  spec form below the home directory, such as "Locale\ZVLibStr.txt"; null answers 1 at once
/// @return  1 on success or for a file read before, 0 on failure
ZV_API long AppendStringFileZV(char const* name);

/// The text for the id, owned by the table; an empty text for an unknown id. Never null.
ZV_API char* GetStringZV(unsigned long id);

/// Frees the table, its blocks and the list of files read so far. Null is accepted.
ZV_API void FreeStringTable(ZVStringTable* table);

/// A copy from AllocMemZV, or null for null.
ZV_API char* AllocString(char const* text);

/// Turns tabs into blanks and removes blanks at both ends, in place. Null is accepted.
ZV_API void StripBlankZV(char* text);

/// Writes the value, truncated to a whole number and held within 32 bits, in decimal. What is no number gives
/// 0.
/// @param out  at least 12 bytes
/// @return  the length of the text
ZV_API long ItoStr(double value, char* out);

/// Copies entry `index`, counted from 1, of a list with the separators "," and "|"; empty when there is none.
/// @param out  as large as the longest entry
/// @return  `out`; null when an argument is null
ZV_API char* strcpycsv(char* out, char const* list, long index);

/// Number of entries: 0 for null, otherwise one more than there are separators.
ZV_API long CSV_Entries(char const* list);

/// Takes the middle out of a text longer than `maxLength`, leaving three dots; the result may be one byte
/// longer than `maxLength`. Texts for which the dots would not fit stay whole.
/// @return  the length of the text after the call; 0 for null
ZV_API long ShortenString(char* text, long maxLength);

/// Copies a word: up to the closing quote if it begins with one, up to a blank otherwise, after white space.
/// @param out  as large as the text
/// @return  the position behind the closing quote or blank; the end of the text stays the end
ZV_API char const* GetStringWithQuotes(char* out, char const* text);

/// Length-prefixed texts: in place, and as copies. They hold 255 bytes; a longer text is cut there.
ZV_API void PtoCStr(char* text);
ZV_API void CtoPStr(char* text);
ZV_API void CtoPstrcpy(char* out, char const* in);
ZV_API void PtoCstrcpy(char* out, char const* in);

/// Stepping by characters. Texts are UTF-8 and there is no double-byte script, so each non-zero byte counts
/// as one character: CharSize is 0 at the end of the text and 1 elsewhere.
ZV_API long CharSize(char const* text);
ZV_API char* CharAdvance(char* text);            ///< the next position; stays at the end
ZV_API unsigned long GetChar(char const* text);  ///< the character as an unsigned byte
ZV_API unsigned long GetCharAdvance(char** text);
