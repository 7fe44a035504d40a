// The search for a file or a sequence that is not where its name says.
#pragma once

#include "ZVFileSpec.h"

/// A name that is looked for, and what the tags want to know of it.
struct SpecSearch {
    char const* text = "";  ///< spec or path as it was given
    char const* name = "";  ///< its file name, in `text`: a mask for a sequence
    bool isSequence = false;
    bool askUser = false;
    bool searchTree = false;
    bool noCheck = false;
    bool startsAtLast = false;  ///< the user looks from the last search path on, not from the first
    long const* frames = nullptr;
    long frameCount = 0;
    char** searchPaths = nullptr;
    long* isSequenceResult = nullptr;
    long* dataValidResult = nullptr;
    long* userLocatedResult = nullptr;
    char* storedPathResult = nullptr;
};

/// Reads the tags and clears what they want answered.
SpecSearch Read_Search_Tags(TagItem* tags);

/// Says what is looked for, in a text that outlives the search, and answers whether it is a sequence.
void Name_Search(SpecSearch& search, char const* text);

/// The spec of the text as it stands, when the file, or all frames of the sequence, are there; otherwise
/// null.
char* Make_Tested_Spec(SpecSearch const& search);

/// Goes on from a tested spec, or with null to the search paths and the user. Takes the spec over; the result
/// names a file, for a sequence its first frame. Null with error 12 when nothing is found.
char* Finish_Search(SpecSearch& search, char* spec);
