// File dialogs: the user chooses a file to open, a name to save under, or a directory. The dialog runs until
// it has been answered; everything else of the application waits meanwhile, but goes on being drawn and gets
// its ticks. Main thread only.
//
// A list of kinds narrows the files that are shown for opening, and tells for saving what the file is to be.
// It comes of a table of the caller's and of the format modules that read, or write. Without either nothing
// tells which files are wanted, and only directories are shown for opening.
#pragma once

#include "ZVFormat.h"
#include "ZVTags.h"

/// Tags of AskFileNameZV. AskDirectoryZV reads the directory, which it does not write back, and the title.
enum ZVAskTag : unsigned long {
    ZV_ASK_DIRECTORY = 2048,   ///< char*, ZV_SPEC_SIZE bytes: where to start; receives the file's directory
    ZV_ASK_FILE_NAME = 2049,   ///< char const*: the name that is offered
    ZV_ASK_SAVE = 2050,        ///< a file to save; data ignored
    ZV_ASK_TITLE = 2051,       ///< char const*: of the window
    ZV_ASK_FILE_TYPES = 2052,  ///< ZVFileTypeDescriptor*: a table of kinds, whose Values are their names
    ZV_ASK_FORMATS = 2054,     ///< the format modules are kinds too; data ignored
    ZV_ASK_FORMATS_2 = 2055,   ///< the same
    ZV_ASK_FORMAT_RESULT = 2056,  ///< ZVFormatDesc**: the module that is chosen at first, or null
    ZV_ASK_TYPE_RESULT = 2057     ///< ZVFileTypeDescriptor**: the entry that is chosen at first, or null
};

/// Asks for a file. The variables of both result tags receive what the user chooses in the list of kinds, one
/// of them null; they stay as they are when he leaves it alone. A name to save under gets the extension of
/// its kind when it has none, and the user has been asked when it is that of a file.
/// @return  a new spec, to be freed with FreeFileSpecZV. Null when the user cancelled, the error number being
///          what it was; null with error 1 and an error text while no interface runs and without memory
ZV_API char* AskFileNameZV(TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest> char* AskFileNameZV(Key first, Rest... rest)
{
    return AskFileNameZV(Tag_Array(first, rest...).data());
}

/// Asks for a directory; its spec ends with a separator.
ZV_API char* AskDirectoryZV(TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest> char* AskDirectoryZV(Key first, Rest... rest)
{
    return AskDirectoryZV(Tag_Array(first, rest...).data());
}

/// Between these calls, which do not nest, the library leaves all input alone: a dialog that is not of its
/// making runs. The loop of a modal palette takes input all the same.
ZV_API void EnterThirdPartyModalDialogZV();
ZV_API void ExitThirdPartyModalDialogZV();
