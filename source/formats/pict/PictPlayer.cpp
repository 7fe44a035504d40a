// See PictPlayer.h.
#include "PictPlayer.h"

namespace {

constexpr unsigned Version1 = 0x1101, Version2 = 0x02FF;
constexpr int FineFrame = -2;  // marks a header with a frame of its own
constexpr std::size_t HeaderDataSize = 24;
constexpr PictPixel DefaultHilite{0, 0, 0, 255};

/// The work that drawing a picture may take, in pixels: what any picture may, and what its area and its bytes
/// add. Without an end to it, a few bytes that paint everything, over and over, would keep a program for
/// hours.
constexpr long BaseBudget = 1L << 26;
constexpr long PixelBudget = 128, ByteBudget = 256;

/// The eight colours that pictures of version 1 have.
PictPixel Old_Colour(uint32_t number)
{
    switch (number) {
    case 30: return PictWhite;
    case 69: return {255, 255, 0, 255};
    case 137: return {255, 0, 255, 255};
    case 205: return {255, 0, 0, 255};
    case 273: return {0, 255, 255, 255};
    case 341: return {0, 255, 0, 255};
    case 409: return {0, 0, 255, 255};
    default: return PictBlack;
    }
}

}  // namespace

PictPlayer::PictPlayer(std::span<uint8_t const> picture) : bytes_(picture)
{
    bytes_.Skip(2);
    frame_ = bytes_.Rect();
    unsigned const version = bytes_.U16();
    if (version == PICT_OP_VERSION && bytes_.U16() == Version2)
        isVersion2_ = true;
    else if (version != Version1)
        return;
    PictBytes ahead = bytes_;
    if (isVersion2_ && ahead.U16() == PICT_OP_HEADER) {
        PictBytes header(ahead.Take(HeaderDataSize));
        bool const isFine = header.S16() == FineFrame;
        header.Skip(2 + 4 + 4);
        PictRect const fine = header.Rect();
        if (isFine && !header.Has_Failed() && !fine.IsEmpty()) frame_ = fine;
    }
    isPicture_ = !bytes_.Has_Failed() && !frame_.IsEmpty();
}

bool PictPlayer::Play(ZVBitmap* bitmap, PictRect const& area)
{
    if (!isPicture_) return false;
    map_ = {frame_, area, {}};
    if (bitmap) {
        canvas_.emplace(*bitmap, PictPoint{area.left, area.top});
        canvas_->Erase();
        budget_ = BaseBudget + PixelBudget * bitmap->Width * bitmap->Height +
                  ByteBudget * static_cast<long>(bytes_.Rest());
    }
    return Play_Opcodes() && !isUnreadable_;
}

bool PictPlayer::Play_Opcodes()
{
    std::size_t const opcodeSize = isVersion2_ ? 2 : 1;
    while (!bytes_.Has_Failed()) {
        if (isVersion2_) bytes_.Align();
        if (bytes_.Rest() < opcodeSize) return true;  // pictures without their last opcode are about
        unsigned const opcode = isVersion2_ ? bytes_.U16() : bytes_.U8();
        if (opcode == PICT_OP_END) return true;
        if (opcode >= PICT_OP_FIRST_SHAPE && opcode <= PICT_OP_LAST_SHAPE)
            Play_Shape(opcode);
        else if (!Play_State(opcode) && !Play_Colour(opcode) && !Play_Line(opcode) && !Play_Bits(opcode))
            Skip_Opcode(opcode, isVersion2_, bytes_);
    }
    return false;
}

/// A picture that asks for more than it may is as good as a damaged one.
void PictPlayer::Spend(long work)
{
    if (!canvas_) return;
    budget_ -= work;
    if (budget_ < 0) bytes_.Fail();
}

bool PictPlayer::Play_State(unsigned opcode)
{
    switch (opcode) {
    case PICT_OP_CLIP: {
        PictMask clip = Read_Mask();
        if (canvas_) canvas_->Set_Clip(std::move(clip));
        return true;
    }
    case PICT_OP_BACK_PATTERN: backPattern_ = Read_Pattern(); return true;
    case PICT_OP_PEN_PATTERN: penPattern_ = Read_Pattern(); return true;
    case PICT_OP_FILL_PATTERN: fillPattern_ = Read_Pattern(); return true;
    case PICT_OP_BACK_PIXEL_PATTERN: backPattern_ = Read_Pixel_Pattern(); return true;
    case PICT_OP_PEN_PIXEL_PATTERN: penPattern_ = Read_Pixel_Pattern(); return true;
    case PICT_OP_FILL_PIXEL_PATTERN: fillPattern_ = Read_Pixel_Pattern(); return true;
    case PICT_OP_PEN_SIZE: penSize_ = bytes_.Point(); return true;
    case PICT_OP_PEN_MODE: penMode_ = Pict_Mode(bytes_.U16()); return true;
    case PICT_OP_OVAL_SIZE: ovalSize_ = bytes_.Point(); return true;
    case PICT_OP_ORIGIN:
        map_.origin.x += bytes_.S16();
        map_.origin.y += bytes_.S16();
        return true;
    default: return false;
    }
}

bool PictPlayer::Play_Colour(unsigned opcode)
{
    switch (opcode) {
    case PICT_OP_FORE_COLOUR: colours_.fore = Old_Colour(bytes_.U32()); return true;
    case PICT_OP_BACK_COLOUR: colours_.back = Old_Colour(bytes_.U32()); return true;
    case PICT_OP_RGB_FORE: colours_.fore = Read_RGB(); return true;
    case PICT_OP_RGB_BACK: colours_.back = Read_RGB(); return true;
    case PICT_OP_HILITE_COLOUR: colours_.hilite = Read_RGB(); return true;
    case PICT_OP_DEFAULT_HILITE: colours_.hilite = DefaultHilite; return true;
    case PICT_OP_OP_COLOUR: colours_.op = Read_RGB(); return true;
    default: return false;
    }
}

PictPattern PictPlayer::Read_Pattern()
{
    PictPattern pattern;
    auto const rows = bytes_.Take(sizeof pattern.rows);
    std::ranges::copy(rows, pattern.rows);
    return pattern;
}

PictPixel PictPlayer::Read_RGB()
{
    auto const take = [this] { return static_cast<uint8_t>(bytes_.U16() >> 8); };
    uint8_t const red = take(), green = take(), blue = take();
    return {red, green, blue, 255};
}

PictMask PictPlayer::Read_Mask()
{
    PictMask mask = Read_Region(bytes_, map_, canvas_ ? canvas_->Bounds() : PictRect{});
    Spend(static_cast<long>(mask.inside.size()));
    return mask;
}
