// Plays a picture: a stream of opcodes, of version 1 or 2, which set up a pen and colours and draw with them.
// Texts are passed over.
//   0 low half of the size   2 frame, 8   10 version: 0x11 0x01, or 0x0011 0x02FF and most often 0x0C00 with
//   24 bytes, which tell a frame in finer dots when they begin with -2
// In version 2 opcodes have two bytes and stand at even places.
#pragma once

#include "PictOpcodes.h"
#include "PictPixels.h"

class PictPlayer {
public:
    /// Reads the header.
    explicit PictPlayer(std::span<uint8_t const> picture);

    bool Is_Picture() const { return isPicture_; }
    PictRect const& Frame() const { return frame_; }
    long Depth() const { return depth_; }  ///< Of the deepest bitmap that was met while playing; 0 without.

    /// Plays to the end, once.
    /// @param bitmap  of type ZV_BITMAP_RGBA8; null to see what is in the picture and draw nothing
    /// @param area    where the frame is to lie on the bitmap, not empty
    /// @return  false for a damaged picture, and for one with a part that cannot be decompressed
    bool Play(ZVBitmap* bitmap, PictRect const& area);

    /// Some part could not be decompressed, and the error number tells why.
    bool Is_Unreadable() const { return isUnreadable_; }

private:
    bool Play_Opcodes();
    bool Play_State(unsigned opcode);
    bool Play_Colour(unsigned opcode);
    bool Play_Line(unsigned opcode);
    bool Play_Bits(unsigned opcode);

    void Play_Shape(unsigned opcode);
    void Play_Round(unsigned kind, unsigned verb);
    void Play_Arc(unsigned verb);
    void Play_Polygon(unsigned verb, bool isSame);
    void Play_Region(unsigned verb, bool isSame);
    void Paint(unsigned verb, PictShape const& shape);
    void Spend(long work);
    void Draw_Line(PictPoint from, PictPoint to);

    void Play_Bitmap(unsigned opcode);
    void Play_Compressed();
    void Draw_Compressed(PictBytes& bytes, PictRect const& source, PictMask const* mask, long mode,
                         std::span<int32_t const, 9> matrix);
    void Draw(PictRect const& bounds, PictRect const& source, PictRect const& target, PictMask const* mask,
              bool isMono, PictTransfer const& transfer, PictRows& rows);
    PictPattern Read_Pixel_Pattern();
    PictPattern Read_Pattern();
    PictPixel Read_RGB();
    PictMask Read_Mask();

    PictBytes bytes_;
    bool isPicture_ = false;
    bool isVersion2_ = false;
    bool isUnreadable_ = false;
    PictRect frame_;
    long depth_ = 0;

    std::optional<PictCanvas> canvas_;
    long budget_ = 0;  ///< work that drawing may still take
    PictMap map_;
    PictColours colours_;
    PictPattern backPattern_ = PictPattern::Solid(false);
    PictPattern penPattern_ = PictPattern::Solid(true);
    PictPattern fillPattern_ = PictPattern::Solid(true);
    PictPoint penSize_{1, 1}, penPlace_, ovalSize_;
    int penMode_ = PICT_COPY;
    PictRect lastRect_;  ///< for the shapes that are to be drawn where the last one was
    std::vector<PictPoint> lastPolygon_;
    PictMask lastRegion_;
};
