// The lines and shapes of a picture.
#include "PictPlayer.h"

namespace {

enum Verb : unsigned { VERB_FRAME, VERB_PAINT, VERB_ERASE, VERB_INVERT, VERB_FILL };
constexpr unsigned VerbMask = 7;
constexpr unsigned SameFlag = 8;

/// The kinds of shapes by the first digit of their opcodes.
enum Kind : unsigned {
    KIND_RECT = 3,
    KIND_ROUND_RECT = 4,
    KIND_OVAL = 5,
    KIND_ARC = 6,
    KIND_POLYGON = 7,
    KIND_REGION = 8
};

constexpr long WidestFrame = 64;  // a region's frame sees no more than this much of it beyond the bitmap

}  // namespace

bool PictPlayer::Play_Line(unsigned opcode)
{
    PictPoint from = penPlace_;
    PictPoint to;
    switch (opcode) {
    case PICT_OP_LINE:
        from = bytes_.Point();
        to = bytes_.Point();
        break;
    case PICT_OP_LINE_FROM: to = bytes_.Point(); break;
    case PICT_OP_SHORT_LINE: from = bytes_.Point(); [[fallthrough]];
    case PICT_OP_SHORT_LINE_FROM:
        to.x = from.x + bytes_.S8();
        to.y = from.y + bytes_.S8();
        break;
    default: return false;
    }
    penPlace_ = to;
    Draw_Line(from, to);
    return true;
}

void PictPlayer::Draw_Line(PictPoint from, PictPoint to)
{
    Paint(VERB_FRAME, PictLine(map_.Point(from), map_.Point(to), map_.Size(penSize_)));
}

void PictPlayer::Paint(unsigned verb, PictShape const& shape)
{
    if (!canvas_ || bytes_.Has_Failed()) return;
    auto const paint = [&](PictPattern const& pattern, int mode) {
        Spend(canvas_->Paint(shape, pattern, {mode, colours_}));
    };
    switch (verb) {
    case VERB_FRAME:
    case VERB_PAINT: paint(penPattern_, penMode_); break;
    case VERB_ERASE: paint(backPattern_, PICT_COPY); break;
    case VERB_INVERT: paint(PictPattern::Solid(true), PICT_XOR); break;
    case VERB_FILL: paint(fillPattern_, PICT_COPY); break;
    default: break;  // there are no more
    }
}

void PictPlayer::Play_Shape(unsigned opcode)
{
    unsigned const kind = opcode >> 4, verb = opcode & VerbMask;
    bool const isSame = opcode & SameFlag;
    if (kind < KIND_POLYGON && !isSame) lastRect_ = bytes_.Rect();
    switch (kind) {
    case KIND_ARC: Play_Arc(verb); break;
    case KIND_POLYGON: Play_Polygon(verb, isSame); break;
    case KIND_REGION: Play_Region(verb, isSame); break;
    default: Play_Round(kind, verb); break;
    }
}

void PictPlayer::Play_Round(unsigned kind, unsigned verb)
{
    PictRect const rect = map_.Rect(lastRect_);
    PictPoint corner;
    if (kind == KIND_OVAL) corner = {rect.Width(), rect.Height()};
    if (kind == KIND_ROUND_RECT) corner = map_.Size(ovalSize_);
    std::optional<PictPoint> pen;
    if (verb == VERB_FRAME) pen = map_.Size(penSize_);
    Paint(verb, PictRing({rect, corner}, pen));
}

void PictPlayer::Play_Arc(unsigned verb)
{
    long const start = bytes_.S16(), extent = bytes_.S16();
    PictRect const rect = map_.Rect(lastRect_);
    std::optional<PictPoint> pen;
    if (verb == VERB_FRAME) pen = map_.Size(penSize_);
    Paint(verb, PictRing({rect, {rect.Width(), rect.Height()}}, pen, PictWedge(rect, start, extent)));
}

void PictPlayer::Play_Polygon(unsigned verb, bool isSame)
{
    constexpr std::size_t headerSize = 10, pointSize = 4;
    if (!isSame) {
        std::size_t const size = bytes_.U16();
        bytes_.Rect();
        if (size < headerSize) bytes_.Fail();
        if (bytes_.Has_Failed()) return;
        PictBytes points(bytes_.Take(size - headerSize));
        lastPolygon_.clear();
        while (points.Rest() >= pointSize)
            lastPolygon_.push_back(points.Point());
    }
    if (verb == VERB_FRAME) {
        for (std::size_t i = 1; i < lastPolygon_.size(); ++i)
            Draw_Line(lastPolygon_[i - 1], lastPolygon_[i]);
        return;
    }
    std::vector<PictPoint> points;
    for (PictPoint const& point : lastPolygon_)
        points.push_back(map_.Point(point));
    Paint(verb, PictPolygon(std::move(points)));
}

void PictPlayer::Play_Region(unsigned verb, bool isSame)
{
    if (!isSame) {
        PictRect limits = canvas_ ? canvas_->Bounds() : PictRect{};
        // The edge of the bitmap is not an edge of the region.
        if (canvas_) limits = limits.Inset(-WidestFrame, -WidestFrame);
        lastRegion_ = Read_Region(bytes_, map_, limits);
    }
    constexpr long frameWork = 8;  // for a pixel
    Spend(lastRegion_.bounds.Width() * lastRegion_.bounds.Height() * (verb == VERB_FRAME ? frameWork : 1));
    if (!canvas_ || bytes_.Has_Failed()) return;
    if (verb == VERB_FRAME)
        Paint(verb, PictArea(Frame_Of(lastRegion_, map_.Size(penSize_))));
    else
        Paint(verb, PictArea(lastRegion_));
}
