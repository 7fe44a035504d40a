// See FileDialogPath.h. Where there is no room for all, it is the first directories that do not show.
#include "FileDialogPath.h"

#include "FileDialogDraw.h"
#include "FileDialogText.h"

#include "Locale/ZVLibStr.h"

#include <algorithm>
#include <utility>

namespace {

constexpr long Margin = 2, Chevron = 10;

void Draw_Chevron(ZVDrawInfo* draw, long x, long middle, bool isLeft)
{
    long const from = isLeft ? x + 6 : x + 3, to = isLeft ? x + 3 : x + 6;
    DrawLineZV(draw, from, middle - 3, to, middle);
    DrawLineZV(draw, to, middle, from, middle + 3);
}

}  // namespace

void FilePath::Show(std::string const& spec)
{
    parts_.clear();
    hovered_ = pressed_ = -1;
    std::size_t start = 0;
    for (std::size_t end = spec.find('\\'); end != spec.npos; end = spec.find('\\', start)) {
        std::string name = spec.substr(start, end - start);
        if (name.ends_with(':')) name.pop_back();
        bool const isRoot = start == 0 && name == "Root";
        parts_.push_back(
            {isRoot ? GetStringZV(ZVSTR_DIALOG_COMPUTER) : Shown_Name(name), spec.substr(0, end + 1)});
        start = end + 1;
    }
    if (item_) Draw_All();
}

std::string FilePath::Pressed() const
{
    bool const isThere = item_ && item_->state >= 0 && static_cast<std::size_t>(item_->state) < parts_.size();
    return isThere ? parts_[static_cast<std::size_t>(item_->state)].spec : std::string();
}

/// The present directory is in bold.
void FilePath::Choose_Font(ZVDrawInfo* draw, std::size_t part) const
{
    SetFontZV(draw,
              part + 1 == parts_.size() ? static_cast<unsigned short>(ZV_FONT_BOLD) : GetItemFont(item_));
}

long FilePath::Natural_Width(ZVDrawInfo* draw, std::size_t part) const
{
    Choose_Font(draw, part);
    return GetTextWidthZV(draw, parts_[part].name.c_str()) + 2 * CellMargin;
}

/// From the last one back, as far as there is room; the last one is cut when it has to be.
void FilePath::Place_Parts(ZVDrawInfo* draw)
{
    long const room = item_->width - 2 * Margin;
    long total = 0;
    std::size_t first = parts_.size();
    for (Part& part : parts_)
        part.left = part.right = 0;
    while (first > 0) {
        long const width = Natural_Width(draw, first - 1) + Chevron;
        bool const isLast = first == parts_.size();
        long const chevron = first > 1 ? Chevron : 0;
        if (total + width + chevron > room && !isLast) break;
        total += width;
        --first;
    }
    long x = Margin + (first > 0 ? Chevron : 0);
    for (std::size_t i = first; i < parts_.size(); ++i) {
        parts_[i].left = x;
        x += Natural_Width(draw, i);
        parts_[i].right = std::min<long>(x, item_->width - Margin);
        x += Chevron;
    }
}

long FilePath::Part_At(long x) const
{
    for (std::size_t i = 0; i < parts_.size(); ++i)
        if (x >= parts_[i].left && x < parts_[i].right) return static_cast<long>(i);
    return -1;
}

void FilePath::Draw_All()
{
    DrawContext const draw(DrawBeginZV(item_));
    if (!draw) return;
    Place_Parts(draw.get());
    SetPenZV(draw.get(), ZV_PEN_FACE);
    FillRectZV(draw.get(), 0, 0, item_->width - 1, item_->height - 1);
    DrawIShineBorderZV(draw.get(), 0, 0, item_->width, item_->height);
    SetClipRectZV(draw.get(), Margin, Margin, item_->width - 2 * Margin, item_->height - 2 * Margin);
    long const middle = item_->height / 2;
    bool isFirst = true;
    for (std::size_t i = 0; i < parts_.size(); ++i) {
        Part const& part = parts_[i];
        if (part.right == 0) continue;
        SetPenZV(draw.get(), ZV_PEN_TEXT);
        if (i > 0) Draw_Chevron(draw.get(), part.left - Chevron, middle, isFirst);
        isFirst = false;
        bool const isLit = static_cast<long>(i) == (pressed_ >= 0 ? pressed_ : hovered_);
        if (isLit) {
            SetPenZV(draw.get(), ZV_PEN_MARKED);
            FillRectZV(draw.get(), part.left, Margin, part.right - 1, item_->height - Margin - 1);
        }
        SetPenZV(draw.get(), isLit ? SelectedText : static_cast<unsigned long>(ZV_PEN_TEXT));
        Choose_Font(draw.get(), i);
        Draw_Fitted_Text(draw.get(), part.name, part.left + CellMargin, 0,
                         part.right - part.left - CellMargin, item_->height);
    }
}

void FilePath::Follow(long part)
{
    if (std::exchange(hovered_, part) != part) Draw_All();
}

void FilePath::Release(ZVCustomEvent* event)
{
    long const pressed = std::exchange(pressed_, -1);
    Draw_All();
    if (pressed < 0 || pressed != Part_At(event->x) || !Is_Inside(*item_)) return;
    item_->state = static_cast<int32_t>(pressed);
    Report_Use(event, ZV_MOD_RELEASE);
}

void FilePath::Take_Event(ZVCustomEvent* event)
{
    switch (event->type) {
    case ZV_CUSTOM_MOUSE_MOVE: Follow(Part_At(event->x)); break;
    case ZV_CUSTOM_MOUSE_OUT: Follow(-1); break;
    case ZV_CUSTOM_MOUSE_DOWN:
        pressed_ = Part_At(event->x);
        Draw_All();
        break;
    case ZV_CUSTOM_MOUSE_UP: Release(event); break;
    default: break;
    }
}
