// See FileDialogIcons.h. An icon is drawn in a square of 16 units, which are scaled to pixels.
#include "FileDialogIcons.h"

#include "FileDialogText.h"

#include "ZVEnvironment.h"

#include <algorithm>
#include <initializer_list>

namespace {

constexpr unsigned long Paper = 0xF4F4F0, FolderColor = 0xE3B341, FolderLight = 0xF2CF74;
constexpr unsigned long Blue = 0x4F8FD0, Green = 0x5FA05A, Red = 0xC05A4A, Dark = 0x404048, Metal = 0xB4B8C0;

class Canvas {
public:
    Canvas(ZVDrawInfo* draw, long x, long y, long size) : draw_(draw), x_(x), y_(y), size_(size) {}

    /// Unit coordinates; a rectangle ends ahead of its second corner.
    void Fill(unsigned long colour, long left, long top, long right, long bottom) const
    {
        SetPenZV(draw_, colour);
        FillRectZV(draw_, X(left), Y(top), X(right) - 1, Y(bottom) - 1);
    }
    void Frame(unsigned long colour, long left, long top, long right, long bottom) const
    {
        SetPenZV(draw_, colour);
        DrawRectZV(draw_, X(left), Y(top), X(right) - 1, Y(bottom) - 1);
    }
    void Panel(unsigned long colour, long left, long top, long right, long bottom) const
    {
        Fill(colour, left, top, right, bottom);
        Frame(Dark, left, top, right, bottom);
    }
    void Oval(unsigned long colour, long left, long top, long right, long bottom) const
    {
        SetPenZV(draw_, colour);
        FillEllipseZV(draw_, X(left), Y(top), X(right) - 1, Y(bottom) - 1);
    }
    void Polygon(unsigned long colour, bool isFilled, std::initializer_list<long> points) const
    {
        long scaled[16];
        long count = 0;
        for (long const value : points) {
            scaled[count] = count % 2 ? Y(value) : X(value);
            ++count;
        }
        SetPenZV(draw_, colour);
        if (isFilled)
            FillPolygonZV(draw_, count / 2, scaled);
        else
            DrawPolygonZV(draw_, count / 2, scaled);
    }

private:
    long X(long unit) const { return x_ + unit * size_ / 16; }
    long Y(long unit) const { return y_ + unit * size_ / 16; }

    ZVDrawInfo* draw_;
    long x_, y_, size_;
};

void Draw_Folder(Canvas const& canvas)
{
    canvas.Fill(FolderColor, 1, 3, 7, 5);
    canvas.Fill(FolderColor, 1, 5, 15, 14);
    canvas.Fill(FolderLight, 2, 7, 14, 13);
    canvas.Frame(Dark, 1, 4, 15, 14);
    canvas.Fill(Dark, 1, 3, 7, 4);
    canvas.Fill(FolderColor, 2, 4, 7, 5);
}

void Draw_Sheet(Canvas const& canvas)
{
    canvas.Polygon(Paper, true, {3, 1, 10, 1, 13, 4, 13, 15, 3, 15});
    canvas.Polygon(Dark, false, {3, 1, 10, 1, 13, 4, 13, 14, 3, 14, 3, 1});
    canvas.Polygon(Dark, false, {10, 1, 10, 4, 13, 4});
}

void Draw_Text_Lines(Canvas const& canvas)
{
    for (long y = 6; y <= 12; y += 2)
        canvas.Fill(Metal, 5, y, 11, y + 1);
}

void Draw_Picture_File(Canvas const& canvas)
{
    canvas.Panel(Blue, 1, 2, 15, 14);
    canvas.Oval(FolderLight, 9, 4, 13, 8);
    canvas.Polygon(Green, true, {2, 13, 2, 11, 6, 7, 10, 11, 12, 9, 14, 11, 14, 13});
}

void Draw_Movie_File(Canvas const& canvas)
{
    canvas.Fill(Dark, 1, 2, 15, 14);
    for (long x = 2; x < 14; x += 3) {
        canvas.Fill(Paper, x, 3, x + 2, 4);
        canvas.Fill(Paper, x, 12, x + 2, 13);
    }
    canvas.Fill(Blue, 2, 5, 14, 11);
    canvas.Polygon(Paper, true, {6, 5, 11, 8, 6, 11});
}

void Draw_Sound_File(Canvas const& canvas)
{
    Draw_Sheet(canvas);
    canvas.Fill(Red, 8, 5, 9, 12);
    canvas.Fill(Red, 9, 5, 11, 7);
    canvas.Oval(Red, 5, 10, 9, 13);
}

void Draw_Home(Canvas const& canvas)
{
    canvas.Panel(Paper, 3, 8, 13, 14);
    canvas.Fill(Blue, 7, 10, 9, 14);
    canvas.Polygon(Red, true, {8, 1, 15, 8, 1, 8});
    canvas.Polygon(Dark, false, {8, 1, 14, 8, 1, 8, 8, 1});
}

void Draw_Screen(Canvas const& canvas, unsigned long colour)
{
    canvas.Panel(Metal, 1, 2, 15, 12);
    canvas.Fill(colour, 3, 4, 13, 10);
    canvas.Fill(Dark, 7, 12, 9, 14);
    canvas.Fill(Dark, 4, 13, 12, 14);
}

void Draw_Disk(Canvas const& canvas)
{
    canvas.Panel(Metal, 1, 5, 15, 12);
    canvas.Fill(Paper, 2, 6, 14, 7);
    canvas.Fill(Dark, 3, 9, 9, 10);
    canvas.Fill(Green, 11, 9, 13, 10);
}

struct Family {
    FileIcon icon;
    std::string_view extensions;  ///< each between blanks
};
constexpr Family families[] = {
    {FileIcon::Picture,
     " png jpg jpeg tif tiff tga bmp gif exr dpx cin sgi rgb psd pct pict vpb iff webp heic avif "
     "hdr pic ppm pgm svg raw dng cr2 nef "},
    {FileIcon::Movie, " mov mp4 m4v avi mkv mpg mpeg webm mxf flm ei pcs pics wmv flv ogv mts m2ts 3gp "},
    {FileIcon::Sound, " wav aif aiff aifc mp3 flac ogg oga opus m4a aac au snd wma mid "},
};

}  // namespace

FileIcon Icon_Of_File(std::string_view name)
{
    std::size_t const dot = name.rfind('.');
    if (dot == name.npos || dot + 1 == name.size()) return FileIcon::File;
    std::string const wanted = ' ' + Folded(name.substr(dot + 1)) + ' ';
    for (Family const& family : families)
        if (family.extensions.find(wanted) != family.extensions.npos) return family.icon;
    return FileIcon::File;
}

void Draw_File_Icon(ZVDrawInfo* draw, FileIcon icon, long x, long y, long size)
{
    Canvas const canvas(draw, x, y, size);
    switch (icon) {
    case FileIcon::Folder: Draw_Folder(canvas); break;
    case FileIcon::File: Draw_Sheet(canvas); break;
    case FileIcon::Picture: Draw_Picture_File(canvas); break;
    case FileIcon::Movie: Draw_Movie_File(canvas); break;
    case FileIcon::Sound: Draw_Sound_File(canvas); break;
    case FileIcon::Home: Draw_Home(canvas); break;
    case FileIcon::Desktop: Draw_Screen(canvas, Blue); break;
    case FileIcon::Computer: Draw_Screen(canvas, Dark); break;
    case FileIcon::Volume: Draw_Disk(canvas); break;
    case FileIcon::Documents:
        Draw_Sheet(canvas);
        Draw_Text_Lines(canvas);
        break;
    }
}
