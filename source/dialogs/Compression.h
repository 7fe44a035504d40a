// What the dialogs about compression share: a choice of codecs, the quality in per cent, and lines of a
// label, a gadget and a unit.
#pragma once

#include "ModalDialog.h"

#include "formats/MovieSeam.h"

#include <string>
#include <vector>

/// The codecs that a cycle offers, in the order of its entries.
class CodecList {
public:
    explicit CodecList(std::vector<OSMovieCodec> codecs) : codecs_(std::move(codecs)) {}

    /// Those for pictures or sound that the movie layer has, of which some cannot be streamed.
    CodecList(bool isSound, bool isStreamed);

    /// Puts one ahead of those that the movie layer has.
    void Add_First(uint32_t code, char const* name);

    /// Declares the cycle with the entry of `code`, the first one when that is not offered.
    void Add_Cycle(unsigned short id, uint32_t code) const;
    OSMovieCodec const& Chosen(unsigned short id) const;  ///< Of a list that is not empty.
    bool Is_Empty() const { return codecs_.empty(); }

private:
    std::vector<OSMovieCodec> codecs_;
};

/// Declares a slider of 0 to 100 per cent below a gadget.
void Add_Quality(unsigned short id, unsigned short reference, long quality, long best);

/// What the slider tells, out of `best`; `old` when it stands where that is shown.
long Chosen_Quality(unsigned short id, long old, long best);

/// Adds a text in front of a gadget, and one behind it.
void Add_Label(unsigned short gadget, unsigned long textId);
void Add_Unit(unsigned short gadget, unsigned long textId);

/// Adds a cycle below another gadget, with a text in front of it.
void Add_Labelled_Cycle(unsigned short id, unsigned short reference, unsigned long labelId,
                        unsigned long entriesId);
