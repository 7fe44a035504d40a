// Pseudo-windows: records among the windows that have a parent and no native window.
#include "interface/PaletteTree.h"

#include "ZVPseudoWindow.h"
#include "interface/WindowPrefs.h"

static ZVWindow* Find_PseudoWindow(unsigned short id)
{
    ZVWindow* const window = ZVEnv ? Find_Record<ZVWindow>(ZVEnv->windows, id) : nullptr;
    return window && window->parent ? window : nullptr;
}

/// The distance that the tags ask for, and the pixel of the frame.
static long Gap_Of(TagItem* tags)
{
    ZVStyle const& style = *ZVEnv->style;
    long gap = style.paletteGap;
    while (TagItem const* tag = NextTagItem(&tags)) {
        switch (tag->tag) {
        case ZV_GAP_NORMAL: gap = style.gapNormal; break;
        case ZV_GAP_WIDE: gap = style.gapWide; break;
        case ZV_GAP_EXTRA: gap = style.gapExtra; break;
        case ZV_GAP_FIXED: gap = Tag_Number(*tag); break;
        case ZV_GAP_NONE: gap = 0; break;
        default: break;
        }
    }
    return gap + 1;
}

static ZVRectT<long> Rect_Of(ZVWindow const& window)
{
    return {window.left, window.top, window.width, window.height};
}

static void Place(ZVWindow& window, TagItem* tags)
{
    ZVRectT<long> const parent{0, 0, window.parent->width, window.parent->height};
    ZVRectT<long> const own{0, 0, window.width, window.height};
    ZVWindow const* const beside =
        window.reference && window.position ? Find_PseudoWindow(window.reference) : nullptr;
    ZVRectT<long> const reference = beside ? Rect_Of(*beside) : parent;
    long left = 0, top = 0;
    GetElementPlacement(window.position, &own, &reference, &parent, Gap_Of(tags), &left, &top);
    window.left = static_cast<int32_t>(left);
    window.top = static_cast<int32_t>(top);
}

ZVWindow* AddPseudoWindowZV(unsigned short id, unsigned short position, short reference, long width,
                            long height, TagItem* tags)
{
    if (!ZVEnv || !ZVEnv->rootWindow || id == 0) {
        SetError(ZV_ERR_NOT_FOUND);
        SetErrorString(id ? "A pseudo-window needs a root window." : "A pseudo-window needs an id above 0.");
        return nullptr;
    }
    TagItem* const clone = Clone_Tags(tags);
    ZVWindow* const window = clone ? New_Window() : nullptr;
    if (!window) {
        FreeMemZV(clone);
        return nullptr;
    }
    window->tags = clone;
    window->parent = ZVEnv->rootWindow;
    window->position = position;
    window->reference = static_cast<uint16_t>(reference);
    if (window->reference == 65535) window->reference = static_cast<uint16_t>(ZVEnv->lastPseudoWindowId);
    window->width = static_cast<int32_t>(width);
    window->height = static_cast<int32_t>(height);
    Place(*window, tags);
    // The reference is looked for among the others, so the id comes last.
    window->node.id = id;
    ZVEnv->lastPseudoWindowId = id;
    Mac_Invalidate(window->parent, Rect_Of(*window));
    return window;
}

void DeletePseudoWindowZV(ZVWindow* window)
{
    if (!ZVEnv || !Is_Window(window) || !window->parent) return;
    Snapshot_WindowPrefs();
    Mac_Invalidate(window->parent, Rect_Of(*window));
    Close_Window(*window);
}

void DeletePseudoWindowZV(unsigned short id)
{
    DeletePseudoWindowZV(Find_PseudoWindow(id));
}

// ---- places and sizes -------------------------------------------------------------------------------------

namespace {
using Field = int32_t ZVWindow::*;
}

static void Set_Fields(unsigned short id, Field first, long firstValue, Field second, long secondValue)
{
    ZVWindow* const window = Find_PseudoWindow(id);
    if (!window) return;
    window->*first = static_cast<int32_t>(firstValue);
    window->*second = static_cast<int32_t>(secondValue);
}

/// 0 for an unknown window.
static void Get_Field(unsigned short id, Field field, long* value)
{
    ZVWindow const* const window = Find_PseudoWindow(id);
    if (value) *value = window ? window->*field : 0;
}

void SetPseudoWindowPosZV(unsigned short id, long x, long y)
{
    Set_Fields(id, &ZVWindow::left, x, &ZVWindow::top, y);
}

void GetPseudoWindowPosZV(unsigned short id, long* x, long* y)
{
    Get_Field(id, &ZVWindow::left, x);
    Get_Field(id, &ZVWindow::top, y);
}

void SetPseudoWindowSizeZV(unsigned short id, long width, long height)
{
    Set_Fields(id, &ZVWindow::width, width, &ZVWindow::height, height);
}

void GetPseudoWindowSizeZV(unsigned short id, long* width, long* height)
{
    Get_Field(id, &ZVWindow::width, width);
    Get_Field(id, &ZVWindow::height, height);
}

// ---- rows -------------------------------------------------------------------------------------------------

namespace {
/// Windows in a row; unknown ids are null.
class Row {
public:
    Row(unsigned short count, unsigned long const* ids) : count_(ZVEnv ? count : 0), ids_(ids) {}

    long Count() const { return count_; }
    ZVWindow* At(long place) const
    {
        bool const isInside = place >= 0 && place < count_ && ids_[place] <= 65535;
        return isInside ? Find_PseudoWindow(static_cast<unsigned short>(ids_[place])) : nullptr;
    }
    ZVWindow* First() const { return At(0); }
    ZVWindow* Last() const { return At(count_ - 1); }

private:
    long count_;
    unsigned long const* ids_;
};

/// 0 for null.
long Right_Edge(ZVWindow const* window)
{
    return window ? window->left + window->width : 0;
}
}  // namespace

void Center_PseudoWindows(unsigned short count, unsigned long const* ids)
{
    Row const row(count, ids);
    if (!row.First() || !row.Last()) return;
    long const span = Right_Edge(row.Last()) - row.First()->left;
    long const shift = (row.First()->parent->width - span) / 2 - row.First()->left;
    for (long i = 0; i < row.Count(); ++i)
        if (ZVWindow* window = row.At(i)) window->left += static_cast<int32_t>(shift);
}

void Spread_PseudoWindows(unsigned short count, unsigned long const* ids)
{
    Row const row(count, ids);
    if (count <= 2 || !row.First() || !row.Last()) return;
    long sum = 0;
    for (long i = 1; i + 1 < row.Count(); ++i)
        if (ZVWindow const* window = row.At(i)) sum += window->width;
    if (sum == 0) return;
    long const space = row.Last()->left - Right_Edge(row.First());
    double const gap = static_cast<double>(space - sum) / static_cast<double>(count - 1);
    for (long i = 1; i + 1 < row.Count(); ++i) {
        if (ZVWindow* window = row.At(i))
            window->left = static_cast<int32_t>(static_cast<double>(Right_Edge(row.At(i - 1))) + gap + 0.5);
    }
}
