#include "Surface.h"

#include <pixman.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

namespace {

/// A fill of fewer pixels than this, such as that of a button, takes pixman up to half as long again.
constexpr int SmallFill = 4096;

/// A region of more boxes than this costs more than showing what lies between them.
constexpr int MostTouchedBoxes = 64;

// ---- pixel formats ----------------------------------------------------------------------------------------
//
// Spread puts the fields of a pixel into lanes of 16 bits, so that arithmetic treats them all at once; Gather
// is the way back.

struct Grey8 {
    using Word = uint8_t;
    static uint64_t Spread(Word word) { return word; }
    static Word Gather(uint64_t lanes) { return static_cast<Word>(lanes); }
    static Word From_Color(uint32_t color)
    {
        uint32_t const weighed = (color >> 16 & 0xFF) * 77 + (color >> 8 & 0xFF) * 150 + (color & 0xFF) * 29;
        return static_cast<Word>((weighed + 128) >> 8);
    }
    static uint32_t To_Color(Word word) { return word * 0x010101U; }
};

struct Rgb555 {
    using Word = uint16_t;
    static uint64_t Spread(Word word)
    {
        uint64_t const wide = word;
        return (wide & 0x1F) | (wide & 0x3E0) << 11 | (wide & 0x7C00) << 22;
    }
    static Word Gather(uint64_t lanes)
    {
        return static_cast<Word>((lanes & 0x1F) | (lanes >> 11 & 0x3E0) | (lanes >> 22 & 0x7C00));
    }
    static Word From_Color(uint32_t color)
    {
        return static_cast<Word>((color >> 9 & 0x7C00) | (color >> 6 & 0x3E0) | (color >> 3 & 0x1F));
    }
    static uint32_t To_Color(Word word)
    {
        uint32_t const wide = word;
        return (wide & 0x7C00) << 9 | (wide & 0x3E0) << 6 | (wide & 0x1F) << 3;
    }
};

struct Rgb888 {
    using Word = uint32_t;
    static uint64_t Spread(Word word) { return (word & 0xFF00FF) | uint64_t{word & 0xFF00} << 24; }
    static Word Gather(uint64_t lanes)
    {
        return static_cast<Word>((lanes & 0xFF00FF) | (lanes >> 24 & 0xFF00)) | 0xFF000000;
    }
    static Word From_Color(uint32_t color) { return color | 0xFF000000; }
    static uint32_t To_Color(Word word) { return word & 0xFFFFFF; }
};

template <typename Work> void Visit_Format(int depth, Work&& work)
{
    switch (depth) {
    case 8: work(Grey8()); break;
    case 16: work(Rgb555()); break;
    default: work(Rgb888()); break;
    }
}

/// Calls `work` with the formats of what is written and what is read.
template <typename Work> void Visit_Formats(int to, int from, Work&& work)
{
    Visit_Format(
        to, [&](auto toFormat) { Visit_Format(from, [&](auto fromFormat) { work(toFormat, fromFormat); }); });
}

template <typename Word> Word Load(unsigned char const* pixel)
{
    Word word;
    std::memcpy(&word, pixel, sizeof word);
    return word;
}

template <typename Word> void Store(unsigned char* pixel, Word word)
{
    std::memcpy(pixel, &word, sizeof word);
}

uint32_t Pixel_Of_Color(int depth, uint32_t color)
{
    uint32_t pixel = 0;
    Visit_Format(depth, [&](auto format) { pixel = format.From_Color(color); });
    return pixel;
}

// ---- rows -------------------------------------------------------------------------------------------------

/// Writes pixels of one format from those of another, `from(i)` being the address of the i-th.
template <typename To, typename From, typename Place>
void Convert_Row(unsigned char* to, int count, Place&& from)
{
    for (int i = 0; i < count; ++i, to += sizeof(typename To::Word)) {
        auto const word = Load<typename From::Word>(from(i));
        if constexpr (std::is_same_v<To, From>)
            Store(to, word);
        else
            Store(to, To::From_Color(From::To_Color(word)));
    }
}

template <typename Word> void Fill_Row(unsigned char* row, int count, Word word)
{
    for (int i = 0; i < count; ++i)
        Store(row + static_cast<std::size_t>(i) * sizeof word, word);
}

/// Each lane as (color * coverage + pixel * (255 - coverage)) / 255, rounded.
uint64_t Blend_Lanes(uint64_t pixel, uint64_t color, uint64_t coverage)
{
    constexpr uint64_t bytes = 0x00FF00FF00FF00FF, halves = 0x0080008000800080;
    uint64_t const sum = color * coverage + pixel * (255 - coverage) + halves;
    return (sum + (sum >> 8 & bytes)) >> 8 & bytes;
}

/// Two pixels of 32 bits at a time: their eight components side by side in the halves of a vector.
int Blend_Pairs(unsigned char* pixel, unsigned char const* coverage, int count, uint32_t word)
{
    using Bytes = unsigned char __attribute__((vector_size(8)));
    using Halves = uint16_t __attribute__((vector_size(16)));
    Bytes colorBytes;
    uint32_t const pair[] = {word, word};
    std::memcpy(&colorBytes, pair, sizeof pair);
    Halves const color = __builtin_convertvector(colorBytes, Halves);
    int done = 0;
    for (; done + 2 <= count; done += 2, pixel += sizeof pair) {
        uint16_t const a = coverage[done], b = coverage[done + 1];
        Halves const opacity = {a, a, a, a, b, b, b, b};
        auto const under = __builtin_convertvector(Load<Bytes>(pixel), Halves);
        Halves const sum = color * opacity + under * (255 - opacity) + 128;
        auto const blended = std::bit_cast<uint64_t>(__builtin_convertvector((sum + (sum >> 8)) >> 8, Bytes));
        Store(pixel, blended | 0xFF000000FF000000);
    }
    return done;
}

template <typename Format>
void Blend_Row(unsigned char* pixel, unsigned char const* coverage, int count, uint64_t color)
{
    using Word = typename Format::Word;
    // Without a branch: where the glyph begins and ends is not foreseen, and blending costs less than a wrong
    // guess.
    int i = 0;
    if constexpr (sizeof(Word) == 4) i = Blend_Pairs(pixel, coverage, count, Format::Gather(color));
    pixel += static_cast<std::size_t>(i) * sizeof(Word);
    for (; i < count; ++i, pixel += sizeof(Word)) {
        uint64_t const under = Format::Spread(Load<Word>(pixel));
        Store(pixel, Format::Gather(Blend_Lanes(under, color, coverage[i])));
    }
}

}  // namespace

// ---- the surface ------------------------------------------------------------------------------------------

HostSurface::HostSurface(unsigned char* pixels, int width, int height, int depth, int rowBytes)
    : pixels_(pixels), width_(width), height_(height), depth_(depth), rowBytes_(rowBytes), clip_(Bounds())
{
}

void HostSurface::Set_Clip(HostRegion clip)
{
    clip.Intersect(Bounds());
    clip_ = std::move(clip);
}

unsigned char* HostSurface::Address(int x, int y) const
{
    return pixels_ + std::ptrdiff_t{y} * rowBytes_ + std::ptrdiff_t{x} * (depth_ / 8);
}

/// Calls `visit` with each part of the rectangle inside the clip, in the order of the clip's boxes.
template <typename Visit> void HostSurface::Visit_Clip(HostRect const& rect, Visit&& visit) const
{
    HostRect const inside = Intersection(rect, clip_.Bounds());
    if (inside.IsEmpty() || isQuiet_) return;
    int const count = clip_.Box_Count();
    if (count == 1) {
        visit(inside);
        return;
    }
    for (int i = 0; i < count; ++i) {
        HostRect const part = Intersection(inside, clip_.Box(i));
        if (!part.IsEmpty()) visit(part);
    }
}

/// Adds what of the rectangle lies inside the clip.
void HostSurface::Touch(HostRect const& rect)
{
    // Most of what is drawn lies on what was filled just before.
    if (!isTracking_ || Intersection(rect, lastTouched_) == rect) return;
    Visit_Clip(rect, [this](HostRect const& part) {
        touched_.Cover(part);
        lastTouched_ = part;
    });
    if (touched_.Box_Count() > MostTouchedBoxes) touched_ = HostRegion(touched_.Bounds());
}

HostRegion HostSurface::Take_Touched()
{
    lastTouched_ = {};
    return std::exchange(touched_, HostRegion());
}

void HostSurface::Fill_Box(HostRect const& box, uint32_t pixel)
{
    if (box.Width() * std::int64_t{box.Height()} >= SmallFill) {
        pixman_fill(reinterpret_cast<uint32_t*>(pixels_), rowBytes_ / 4, depth_, box.left, box.top,
                    box.Width(), box.Height(), pixel);
        return;
    }
    Visit_Format(depth_, [&](auto format) {
        for (int y = box.top; y < box.bottom; ++y)
            Fill_Row(Address(box.left, y), box.Width(), static_cast<typename decltype(format)::Word>(pixel));
    });
}

void HostSurface::Fill(HostRect const& rect, uint32_t color)
{
    Fill(std::span(&rect, 1), color);
}

void HostSurface::Fill(std::span<HostRect const> rects, uint32_t color)
{
    uint32_t const pixel = Pixel_Of_Color(depth_, color);
    HostRect box;
    for (HostRect const& rect : rects) {
        if (rect.IsEmpty()) continue;
        Visit_Clip(rect, [&](HostRect const& part) { Fill_Box(part, pixel); });
        if (box.IsEmpty()) box = rect;
        box = {std::min(box.left, rect.left), std::min(box.top, rect.top), std::max(box.right, rect.right),
               std::max(box.bottom, rect.bottom)};
    }
    Touch(box);
}

bool HostSurface::Shares_Memory(HostSurface const& other) const
{
    auto const end = [](HostSurface const& surface) {
        return surface.pixels_ + std::ptrdiff_t{surface.height_} * surface.rowBytes_;
    };
    return std::less<>()(pixels_, end(other)) && std::less<>()(other.pixels_, end(*this));
}

/// Copies from `dx` columns and `dy` rows away in the source, which has the pixels. Rows that overlap are of
/// one format and copied in the order that reads each before it is written.
void HostSurface::Copy_Box(HostSurface const& source, HostRect const& box, int dx, int dy)
{
    if (depth_ == source.depth_) {
        auto const bytes = static_cast<std::size_t>(box.Width()) * static_cast<std::size_t>(depth_ / 8);
        for (int i = 0; i < box.Height(); ++i) {
            int const y = dy < 0 ? box.bottom - 1 - i : box.top + i;
            std::memmove(Address(box.left, y), source.Address(box.left + dx, y + dy), bytes);
        }
        return;
    }
    Visit_Formats(depth_, source.depth_, [&]<typename To, typename From>(To, From) {
        for (int y = box.top; y < box.bottom; ++y) {
            unsigned char const* const from = source.Address(box.left + dx, y + dy);
            Convert_Row<To, From>(Address(box.left, y), box.Width(), [from](int x) {
                return from + static_cast<std::size_t>(x) * sizeof(typename From::Word);
            });
        }
    });
}

namespace {

/// A copy of a rectangle of pixels, for reading while the original is overwritten.
struct Snapshot {
    std::vector<uint32_t> pixels;
    HostSurface surface;

    Snapshot(HostSurface const& source, HostRect const& rect, int depth)
        : pixels(static_cast<std::size_t>(rect.Width()) * static_cast<std::size_t>(rect.Height())),
          surface(reinterpret_cast<unsigned char*>(pixels.data()), rect.Width(), rect.Height(), depth,
                  rect.Width() * 4)
    {
        surface.Blit(source, rect, 0, 0);
    }
};

}  // namespace

void HostSurface::Blit(HostSurface const& source, HostRect const& from, int x, int y)
{
    HostRect const inside = Intersection(from, source.Bounds());
    if (inside.IsEmpty()) return;
    int const dx = from.left - x, dy = from.top - y;
    HostRect const to{inside.left - dx, inside.top - dy, inside.right - dx, inside.bottom - dy};
    if (clip_.Box_Count() > 1 && Shares_Memory(source)) {
        // One box would overwrite what another has still to read.
        Snapshot const copy(source, inside, source.depth_);
        Blit(copy.surface, copy.surface.Bounds(), to.left, to.top);
        return;
    }
    Visit_Clip(to, [&](HostRect const& part) { Copy_Box(source, part, dx, dy); });
    Touch(to);
}

/// The place in a source of `size` that place `i` of a target is taken from.
static int Sampled(int i, int size, int target)
{
    return static_cast<int>(std::int64_t{i} * size / target);
}

/// The first place in the target that is taken from place `i` of the source or from behind it.
static int First_Target(int i, int size, int target)
{
    return i <= 0 ? 0
                  : static_cast<int>(
                        std::min<std::int64_t>((std::int64_t{i} * target + size - 1) / size, target));
}

void HostSurface::Stretch(HostSurface const& source, HostRect const& from, HostRect const& to)
{
    if (from.IsEmpty() || to.IsEmpty()) return;
    if (Shares_Memory(source)) {
        HostRect const inside = Intersection(from, source.Bounds());
        if (inside.IsEmpty()) return;
        Snapshot const copy(source, inside, source.depth_);
        Stretch(copy.surface,
                {from.left - inside.left, from.top - inside.top, from.right - inside.left,
                 from.bottom - inside.top},
                to);
        return;
    }
    HostRect const covered{to.left + First_Target(-from.left, from.Width(), to.Width()),
                           to.top + First_Target(-from.top, from.Height(), to.Height()),
                           to.left + First_Target(source.width_ - from.left, from.Width(), to.Width()),
                           to.top + First_Target(source.height_ - from.top, from.Height(), to.Height())};
    if (covered.IsEmpty()) return;
    std::vector<int> columns;
    Visit_Clip(covered, [&](HostRect const& part) {
        columns.clear();
        for (int x = part.left; x < part.right; ++x)
            columns.push_back((from.left + Sampled(x - to.left, from.Width(), to.Width())) *
                              (source.depth_ / 8));
        Visit_Formats(depth_, source.depth_, [&]<typename To, typename From>(To, From) {
            for (int y = part.top; y < part.bottom; ++y) {
                int const sourceY = from.top + Sampled(y - to.top, from.Height(), to.Height());
                unsigned char const* const row = source.Address(0, sourceY);
                Convert_Row<To, From>(Address(part.left, y), part.Width(),
                                      [&](int i) { return row + columns[static_cast<std::size_t>(i)]; });
            }
        });
    });
    Touch(covered);
}

void HostSurface::Blend(HostMask const& mask, int x, int y, uint32_t color)
{
    int const left = x + mask.left, top = y + mask.top;
    HostRect const rect{left, top, left + mask.width, top + mask.height};
    Visit_Clip(rect, [&](HostRect const& part) {
        Visit_Format(depth_, [&](auto format) {
            uint64_t const lanes = format.Spread(format.From_Color(color));
            for (int row = part.top; row < part.bottom; ++row) {
                auto const offset = std::ptrdiff_t{row - top} * mask.width + (part.left - left);
                Blend_Row<decltype(format)>(Address(part.left, row), mask.coverage.data() + offset,
                                            part.Width(), lanes);
            }
        });
    });
    Touch(rect);
}

bool HostSurface::Read(int x, int y, uint32_t& color) const
{
    if (!clip_.Contains(x, y)) return false;
    Visit_Format(depth_, [&](auto format) {
        color = format.To_Color(Load<typename decltype(format)::Word>(Address(x, y)));
    });
    return true;
}
