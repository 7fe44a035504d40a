// See FileDialogPlaces.h.
#include "FileDialogPlaces.h"

#include "FileDialogDraw.h"
#include "FileDialogText.h"

#include "Locale/ZVLibStr.h"

#include <algorithm>
#include <climits>
#include <utility>

namespace {

constexpr long Border = 2;
constexpr char const* RootVolume = "Root:\\";

/// The spec of a directory; empty when there is no such one.
std::string Spec_Of_Directory(std::string const& native)
{
    FSSpec place;
    char spec[ZV_SPEC_SIZE];
    if (native.size() >= sizeof place.path) return {};
    native.copy(place.path, native.size());
    place.path[native.size()] = 0;
    if (GetDOSPathZV(spec, &place) != 0 || !FileExistsZV(spec)) return {};
    return spec;
}

std::string User_Directory(char const* name)
{
    char native[PATH_MAX];
    return OS_Get_User_Dir(native, sizeof native) ? Spec_Of_Directory(native + std::string(name))
                                                  : std::string();
}

}  // namespace

std::string FilePlaces::Home()
{
    std::string home = User_Directory("");
    return home.empty() ? RootVolume : home;
}

void FilePlaces::Add(FileIcon icon, std::string name, std::string spec)
{
    if (!spec.empty()) places_.push_back({icon, std::move(name), std::move(spec)});
}

void FilePlaces::Add_User_Places()
{
    char native[PATH_MAX];
    Add(FileIcon::Home, GetStringZV(ZVSTR_DIALOG_HOME), User_Directory(""));
    if (OS_Get_Desktop_Dir(native, sizeof native))
        Add(FileIcon::Desktop, GetStringZV(ZVSTR_DESKTOP), Spec_Of_Directory(native));
    Add(FileIcon::Documents, GetStringZV(ZVSTR_DIALOG_DOCUMENTS), User_Directory("Documents/"));
}

FilePlaces::FilePlaces()
{
    Add_User_Places();
    auto const visit = [](char const* name, void* data) {
        std::string const spec = std::string(name) + ":\\";
        bool const isRoot = spec == RootVolume;
        static_cast<FilePlaces*>(data)->Add(isRoot ? FileIcon::Computer : FileIcon::Volume,
                                            isRoot ? GetStringZV(ZVSTR_DIALOG_COMPUTER) : Shown_Name(name),
                                            spec);
        return true;
    };
    OS_List_Volumes(visit, this);
}

long FilePlaces::Natural_Width() const
{
    long width = 0;
    for (FilePlace const& place : places_)
        width = std::max(width, GetTextWidthZV(nullptr, place.name.c_str()));
    long const average = GetAveCharWidthZV(nullptr);
    return std::clamp(width, 14 * average, 24 * average) + File_Icon_Size() + 2 * CellMargin + 4 + 2 * Border;
}

void FilePlaces::Draw_All()
{
    DrawContext const draw(DrawBeginZV(item_));
    if (!draw) return;
    top_ = std::min(top_, Last_Top());  // a new size shows other places
    SetFontZV(draw.get(), GetItemFont(item_));
    SetPenZV(draw.get(), ZV_PEN_FACE);
    FillRectZV(draw.get(), Border, Border, item_->width - Border - 1, item_->height - Border - 1);
    Draw_List_Frame(draw.get(), *item_, hasKeyboard_);
    SetClipRectZV(draw.get(), Border, Border, item_->width - 2 * Border, item_->height - 2 * Border);
    long const rowHeight = File_Row_Height(), icon = File_Icon_Size();
    long y = Border;
    for (long i = top_; i < static_cast<long>(places_.size()); ++i, y += rowHeight) {
        FilePlace const& place = places_[static_cast<std::size_t>(i)];
        bool const isMarked = i == marked_;
        if (isMarked) {
            SetPenZV(draw.get(), ZV_PEN_MARKED);
            FillRectZV(draw.get(), Border, y, item_->width - Border - 1, y + rowHeight - 1);
        }
        Draw_File_Icon(draw.get(), place.icon, Border + CellMargin, y + (rowHeight - icon) / 2, icon);
        SetPenZV(draw.get(), isMarked ? SelectedText : static_cast<unsigned long>(ZV_PEN_TEXT));
        long const left = Border + CellMargin + icon + 4;
        Draw_Fitted_Text(draw.get(), place.name, left, y, item_->width - Border - CellMargin - left,
                         rowHeight);
    }
}

void FilePlaces::Set_Marked(long place)
{
    marked_ = place;
    if (!item_) return;
    if (place >= 0) top_ = std::clamp(top_, std::max(place - Page() + 1, 0L), place);
    Draw_All();
}

/// Places that have room.
long FilePlaces::Page() const
{
    return std::max((item_->height - 2 * Border) / File_Row_Height(), 1L);
}

long FilePlaces::Last_Top() const
{
    return std::max(static_cast<long>(places_.size()) - Page(), 0L);
}

void FilePlaces::Turn_Wheel(ZVCustomEvent const& event)
{
    long const top = std::clamp(top_ + Wheel_Rows(event), 0L, Last_Top());
    if (std::exchange(top_, top) != top) Draw_All();
}

void FilePlaces::Mark(std::string const& spec)
{
    auto const found = std::find_if(places_.begin(), places_.end(),
                                    [&](FilePlace const& place) { return place.spec == spec; });
    Set_Marked(found == places_.end() ? -1 : found - places_.begin());
}

FilePlace const* FilePlaces::Marked() const
{
    return marked_ < 0 ? nullptr : &places_[static_cast<std::size_t>(marked_)];
}

void FilePlaces::Show_Keyboard(bool hasKeyboard)
{
    if (std::exchange(hasKeyboard_, hasKeyboard) != hasKeyboard && item_) Draw_All();
}

bool FilePlaces::Key(unsigned code)
{
    if (code != ZV_KEY_UP && code != ZV_KEY_DOWN) return false;
    long const last = static_cast<long>(places_.size()) - 1;
    if (last >= 0) Set_Marked(std::clamp(marked_ + (code == ZV_KEY_DOWN ? 1 : -1), 0L, last));
    return true;
}

void FilePlaces::Press(ZVCustomEvent* event)
{
    long const place = top_ + (event->y - Border) / File_Row_Height();
    if (event->y < Border || place >= static_cast<long>(places_.size())) return;
    Set_Marked(place);
    Report_Use(event, ZV_MOD_PRESS);
}

void FilePlaces::Take_Event(ZVCustomEvent* event)
{
    if (event->type == ZV_CUSTOM_MOUSE_DOWN) Press(event);
    if (event->type == ZV_CUSTOM_WHEEL) Turn_Wheel(*event);
}
