// See FileDialogRows.h.
#include "FileDialogRows.h"

#include "FileDialogDraw.h"
#include "FileDialogIcons.h"
#include "FileDialogText.h"

#include "Locale/ZVLibStr.h"
#include "foundation/Utf8.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

constexpr long Border = 2;
constexpr long ArrowRoom = 14;       ///< of the column by which rows are sorted
constexpr uint32_t TypingTime = 60;  ///< ticks after which a character begins a new name

/// What the widest size and date look like.
constexpr char const* WidestSize = "000 bytes";
constexpr char const* WidestDate = "0000-00-00  00:00";

long Column_Width(ZVDrawInfo const* draw, char const* widest, unsigned long titleId)
{
    return std::max(GetTextWidthZV(draw, widest), GetTextWidthZV(draw, titleId) + ArrowRoom) + 2 * CellMargin;
}

/// A small triangle that points where the larger values are.
void Draw_Arrow(ZVDrawInfo* draw, long x, long middle, bool isDown)
{
    for (long i = 0; i < 4; ++i) {
        long const y = isDown ? middle + 2 - i : middle - 2 + i;
        DrawLineZV(draw, x - i, y, x + i, y);
    }
}

}  // namespace

// ---- geometry ---------------------------------------------------------------------------------------------

FileRows::Area FileRows::Rows_Area() const
{
    long const rowHeight = File_Row_Height();
    return {Border, Border + rowHeight + 1, item_->width - Border, item_->height - Border, rowHeight};
}

FileRows::Columns FileRows::Columns_Of(ZVDrawInfo const* draw) const
{
    long const right = item_->width - Border;
    long const dateLeft = right - Column_Width(draw, WidestDate, ZVSTR_DIALOG_COLUMN_DATE);
    return {dateLeft - Column_Width(draw, WidestSize, ZVSTR_DIALOG_COLUMN_SIZE), dateLeft, right};
}

FileColumn FileRows::Column_At(long x) const
{
    Columns const columns = Columns_Of(nullptr);
    if (x >= columns.dateLeft) return FileColumn::Date;
    return x >= columns.sizeLeft ? FileColumn::Size : FileColumn::Name;
}

long FileRows::Row_At(long y) const
{
    Area const area = Rows_Area();
    long const distance = y - area.top;
    return top_ + (distance < 0 ? -1 : distance / area.rowHeight);
}

long FileRows::Last_Top() const
{
    return std::max(listing_.Row_Count() - Rows_Area().Whole_Rows(), 0L);
}

// ---- drawing ----------------------------------------------------------------------------------------------

void FileRows::Draw_Head(ZVDrawInfo* draw, Area const& area) const
{
    Columns const columns = Columns_Of(draw);
    struct {
        FileColumn column;
        unsigned long title;
        long left, right;
    } const cells[] = {
        {FileColumn::Name, ZVSTR_DIALOG_COLUMN_NAME, area.left, columns.sizeLeft},
        {FileColumn::Size, ZVSTR_DIALOG_COLUMN_SIZE, columns.sizeLeft, columns.dateLeft},
        {FileColumn::Date, ZVSTR_DIALOG_COLUMN_DATE, columns.dateLeft, columns.right},
    };
    FileOrder const order = listing_.Order();
    for (auto const& cell : cells) {
        SetPenZV(draw, ZV_PEN_PALETTE);
        FillRectZV(draw, cell.left, Border, cell.right - 1, area.top - 2);
        SetPenZV(draw, ZV_PEN_LIGHT_EDGE);
        DrawLineZV(draw, cell.left, Border, cell.left, area.top - 2);
        SetPenZV(draw, ZV_PEN_SHADOW);
        DrawLineZV(draw, cell.right - 1, Border, cell.right - 1, area.top - 2);
        SetPenZV(draw, ZV_PEN_TEXT);
        bool const hasArrow = cell.column == order.column;
        long const right = cell.right - CellMargin - (hasArrow ? ArrowRoom : 0);
        long left = cell.left + CellMargin;
        // Above numbers, which stand at the right.
        if (cell.column == FileColumn::Size) left = std::max(left, right - GetTextWidthZV(draw, cell.title));
        Draw_Fitted_Text(draw, GetStringZV(cell.title), left, Border, right - left, area.rowHeight);
        if (hasArrow)
            Draw_Arrow(draw, cell.right - CellMargin - 4, Border + area.rowHeight / 2, order.isDescending);
    }
    SetPenZV(draw, ZV_PEN_DARK_EDGE);
    DrawLineZV(draw, area.left, area.top - 1, area.right - 1, area.top - 1);
}

void FileRows::Draw_Row(ZVDrawInfo* draw, Area const& area, Columns const& columns, long row) const
{
    long const y = area.top + (row - top_) * area.rowHeight;
    bool const isThere = row < listing_.Row_Count();
    bool const isSelected = isThere && listing_.Entry_Of_Row(row) == selected_;
    SetPenZV(draw, isSelected ? ZV_PEN_MARKED : ZV_PEN_FACE);
    FillRectZV(draw, area.left, y, area.right - 1, y + area.rowHeight - 1);
    if (!isThere) return;
    FileEntry const& entry = listing_.Row(row);
    std::string const name = Shown_Name(entry.name);
    long const icon = File_Icon_Size(), textLeft = area.left + CellMargin + icon + 4;
    Draw_File_Icon(draw, entry.isDirectory ? FileIcon::Folder : Icon_Of_File(entry.name),
                   area.left + CellMargin, y + (area.rowHeight - icon) / 2, icon);
    SetPenZV(draw, isSelected ? SelectedText : static_cast<unsigned long>(ZV_PEN_TEXT));
    Draw_Fitted_Text(draw, name, textLeft, y, columns.sizeLeft - CellMargin - textLeft, area.rowHeight);
    if (!entry.isMeasured) return;
    if (!entry.isDirectory) {
        std::string const size = Size_Text(entry.size);
        long const width = GetTextWidthZV(draw, size.c_str());
        Draw_Fitted_Text(draw, size, columns.dateLeft - CellMargin - width, y, width, area.rowHeight);
    }
    Draw_Fitted_Text(draw, Date_Text(entry.modified), columns.dateLeft + CellMargin, y,
                     columns.right - columns.dateLeft - CellMargin, area.rowHeight);
}

/// What stands in place of rows, where there are none.
std::string FileRows::Message() const
{
    switch (listing_.State()) {
    case FileReading::Running: return GetStringZV(ZVSTR_DIALOG_READING);
    case FileReading::Missing: return GetStringZV(ZVSTR_DIALOG_GONE);
    case FileReading::Denied: return GetStringZV(ZVSTR_DIALOG_DENIED);
    case FileReading::Failed: return GetStringZV(ZVSTR_DIALOG_UNREADABLE);
    default: return GetStringZV(listing_.Has_Entries() ? ZVSTR_DIALOG_NONE_FIT : ZVSTR_DIALOG_EMPTY);
    }
}

void FileRows::Draw_Rows(ZVDrawInfo* draw, Area const& area) const
{
    Columns const columns = Columns_Of(draw);
    SetClipRectZV(draw, area.left, area.top, area.right - area.left, area.bottom - area.top);
    for (long row = top_; area.top + (row - top_) * area.rowHeight < area.bottom; ++row)
        Draw_Row(draw, area, columns, row);
    if (listing_.Row_Count() > 0) return;
    std::string const message = Message();
    SetPenZV(draw, ZV_PEN_TEXT);
    long const width = GetTextWidthZV(draw, message.c_str());
    long const left = std::max((item_->width - width) / 2, area.left + CellMargin);
    Draw_Fitted_Text(draw, message, left, area.top, area.right - left, (area.bottom - area.top) / 2);
}

void FileRows::Draw()
{
    DrawContext const draw(DrawBeginZV(item_));
    if (!draw) return;
    Area const area = Rows_Area();
    SetFontZV(draw.get(), GetItemFont(item_));
    Draw_List_Frame(draw.get(), *item_, hasKeyboard_);
    Draw_Head(draw.get(), area);
    Draw_Rows(draw.get(), area);
}

void FileRows::Redraw_Rows(long first, long second)
{
    DrawContext const draw(item_ ? DrawBeginZV(item_) : nullptr);
    if (!draw) return;
    Area const area = Rows_Area();
    Columns const columns = Columns_Of(draw.get());
    SetFontZV(draw.get(), GetItemFont(item_));
    SetClipRectZV(draw.get(), area.left, area.top, area.right - area.left, area.bottom - area.top);
    for (long const row : {first, second})
        if (row >= top_ && area.top + (row - top_) * area.rowHeight < area.bottom)
            Draw_Row(draw.get(), area, columns, row);
}

// ---- the view ---------------------------------------------------------------------------------------------

void FileRows::Update_Bar()
{
    ZVItem* const bar = FindItem2ZV(item_->group->palette, barId_);
    if (!bar) return;
    auto const rows = static_cast<int32_t>(listing_.Row_Count());
    auto const page = static_cast<int32_t>(Rows_Area().Whole_Rows());
    if (bar->maxInt != rows || bar->Page != page)
        ModifyItemZV(bar, ZV_ITEM_MAX, rows, ZV_ITEM_PROP_PAGE, page, 0);
    SetGadgetStateZV(bar, static_cast<double>(top_));
}

void FileRows::Set_Top(long top)
{
    top = std::clamp(top, 0L, Last_Top());
    if (std::exchange(top_, top) == top) return;
    Draw();
    Update_Bar();
}

void FileRows::Show_Listing()
{
    if (!item_) return;
    top_ = std::clamp(top_, 0L, Last_Top());
    Update_Bar();
    Draw();
}

void FileRows::Show_New_Listing()
{
    selected_ = -1;
    top_ = 0;
    typed_.clear();
    Show_Listing();
}

void FileRows::Show_From(long row)
{
    if (item_) Set_Top(row);
}

void FileRows::Show_Keyboard(bool hasKeyboard)
{
    if (std::exchange(hasKeyboard_, hasKeyboard) != hasKeyboard && item_) Draw();
}

void FileRows::Select_Row(long row)
{
    if (!item_) return;
    long const old = Selected_Row();
    bool const isThere = row >= 0 && row < listing_.Row_Count();
    selected_ = isThere ? listing_.Entry_Of_Row(row) : -1;
    Redraw_Rows(old, row);
    if (!isThere) return;
    long const page = Rows_Area().Whole_Rows();
    if (row < top_) Set_Top(row);
    if (row >= top_ + page) Set_Top(row - page + 1);
}

// ---- keys -------------------------------------------------------------------------------------------------

bool FileRows::Find_Typed(unsigned long character)
{
    if (character < ' ' || character == 0x7F) return false;
    uint32_t const now = Mac_Tick_Count();
    if (now - typedAt_ > TypingTime) typed_.clear();
    if (typed_.empty() && character == ' ') return false;
    typedAt_ = now;
    Append_Character(typed_, static_cast<char32_t>(character));
    long const row = listing_.Row_Of_Prefix(typed_);
    if (row >= 0) Select_Row(row);
    return true;
}

bool FileRows::Key(unsigned code, unsigned long character)
{
    if (!item_) return false;
    long const page = std::max(Rows_Area().Whole_Rows() - 1, 1L), last = listing_.Row_Count() - 1;
    long const row = Selected_Row();
    long wanted = row;
    switch (code) {
    case ZV_KEY_UP: wanted = row < 0 ? last : row - 1; break;
    case ZV_KEY_DOWN: wanted = row + 1; break;
    case ZV_KEY_PAGE_UP: wanted = row - page; break;
    case ZV_KEY_PAGE_DOWN: wanted = row + page; break;
    case ZV_KEY_HOME: wanted = 0; break;
    case ZV_KEY_END: wanted = last; break;
    default: return Find_Typed(character);
    }
    if (last >= 0) Select_Row(std::clamp(wanted, 0L, last));
    return true;
}

// ---- the mouse --------------------------------------------------------------------------------------------

void FileRows::Press(ZVCustomEvent* event)
{
    item_->pressed = 1;
    Area const area = Rows_Area();
    isHeadPressed_ = event->y < area.top;
    if (isHeadPressed_) return;
    long const row = Row_At(event->y);
    isPressedTwice_ = event->modifiers & ZV_MOD_DOUBLE_CLICK && row == Selected_Row();
    Select_Row(row);
    Report_Use(event, ZV_MOD_PRESS);
}

/// The selection follows the mouse, and the list scrolls when that is above or below it.
void FileRows::Follow(ZVCustomEvent* event)
{
    if (!item_->pressed || isHeadPressed_ || isPressedTwice_ || Selected_Row() < 0) return;
    Area const area = Rows_Area();
    long const y = std::clamp<long>(event->y, area.top - 1, area.bottom);
    // Beyond the list it is the ticks that go on, so that a restless mouse does not.
    bool const isOutside = y < area.top || y >= area.bottom;
    if (isOutside != (event->type == ZV_CUSTOM_TICK)) return;
    long const row = std::clamp(Row_At(y), 0L, listing_.Row_Count() - 1);
    if (row == Selected_Row()) return;
    Select_Row(row);
    Report_Use(event, ZV_MOD_CHANGE);
}

void FileRows::Release(ZVCustomEvent* event)
{
    if (!std::exchange(item_->pressed, 0)) return;
    if (std::exchange(isHeadPressed_, false)) {
        if (event->y < 0 || event->y >= Rows_Area().top || !Is_Inside(*item_)) return;
        FileOrder const old = listing_.Order();
        FileColumn const column = Column_At(event->x);
        listing_.Set_Order({column, column == old.column && !old.isDescending});
        Show_Listing();
        Select_Row(Selected_Row());
        return;
    }
    isOpening_ = std::exchange(isPressedTwice_, false) && Selected_Row() >= 0;
    Report_Use(event, ZV_MOD_RELEASE);
}

void FileRows::Take_Event(ZVCustomEvent* event)
{
    switch (event->type) {
    case ZV_CUSTOM_MOUSE_DOWN: Press(event); break;
    case ZV_CUSTOM_MOUSE_MOVE:
    case ZV_CUSTOM_TICK: Follow(event); break;
    case ZV_CUSTOM_MOUSE_UP: Release(event); break;
    case ZV_CUSTOM_WHEEL: Set_Top(top_ + Wheel_Rows(*event)); break;
    default: break;
    }
}
