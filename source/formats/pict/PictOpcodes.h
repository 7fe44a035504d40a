// The numbers of a picture's opcodes, and how long those are that nobody plays.
#pragma once

#include "PictBytes.h"

enum PictOpcode : unsigned {
    PICT_OP_CLIP = 0x01,
    PICT_OP_BACK_PATTERN = 0x02,
    PICT_OP_PEN_SIZE = 0x07,
    PICT_OP_PEN_MODE = 0x08,
    PICT_OP_PEN_PATTERN = 0x09,
    PICT_OP_FILL_PATTERN = 0x0A,
    PICT_OP_OVAL_SIZE = 0x0B,
    PICT_OP_ORIGIN = 0x0C,
    PICT_OP_FORE_COLOUR = 0x0E,
    PICT_OP_BACK_COLOUR = 0x0F,
    PICT_OP_VERSION = 0x11,
    PICT_OP_BACK_PIXEL_PATTERN = 0x12,
    PICT_OP_PEN_PIXEL_PATTERN = 0x13,
    PICT_OP_FILL_PIXEL_PATTERN = 0x14,
    PICT_OP_RGB_FORE = 0x1A,
    PICT_OP_RGB_BACK = 0x1B,
    PICT_OP_HILITE_COLOUR = 0x1D,
    PICT_OP_DEFAULT_HILITE = 0x1E,
    PICT_OP_OP_COLOUR = 0x1F,
    PICT_OP_LINE = 0x20,
    PICT_OP_LINE_FROM = 0x21,
    PICT_OP_SHORT_LINE = 0x22,
    PICT_OP_SHORT_LINE_FROM = 0x23,
    PICT_OP_FIRST_SHAPE = 0x30,  ///< sixteen for each kind of shape
    PICT_OP_LAST_SHAPE = 0x8F,
    PICT_OP_BITS_RECT = 0x90,
    PICT_OP_BITS_REGION = 0x91,
    PICT_OP_PACKED_RECT = 0x98,
    PICT_OP_PACKED_REGION = 0x99,
    PICT_OP_DIRECT_RECT = 0x9A,
    PICT_OP_DIRECT_REGION = 0x9B,
    PICT_OP_END = 0xFF,
    PICT_OP_HEADER = 0x0C00,
    PICT_OP_COMPRESSED = 0x8200
};

/// Passes over what follows an opcode.
void Skip_Opcode(unsigned opcode, bool isVersion2, PictBytes& bytes);
