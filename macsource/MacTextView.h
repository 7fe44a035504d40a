// A text that is edited, in a frame on a port: its lines, how far it is scrolled, the caret and the
// selection, and where a point lies in it. One line that moves sideways, or several that wrap at words and
// move by lines.
#pragma once

#include "MacPort.h"
#include "MacTextBuffer.h"
#include "MacTextLines.h"

#include <optional>

struct TextColors {
    uint32_t paper, ink;
    uint32_t marked, markedInk;  ///< of the selection
};

class TextView {
public:
    TextView(TextLook const& look, bool isMultiLine) : look_(look), isMultiLine_(isMultiLine) {}

    // What is changed here shows after Update.
    TextBuffer buffer;
    bool isActive = false;   ///< shows the selection or the caret
    bool isCaretOn = false;  ///< not in the dark half of its blinking

    bool Is_Multi_Line() const { return isMultiLine_; }
    bool Is_Password() const { return look_.Is_Password(); }

    /// The frame, one pixel wide, in the port that it is drawn in.
    void Place(HostRect const& frame);

    /// Brings lines and scrolling in line with the buffer, so that the caret is in view.
    /// @return  what has to be drawn again
    HostRect Update();

    /// All of it inside the frame, as far as it lies in the area.
    void Draw(ZVPort& port, HostRect const& area, TextColors const& colors) const;

    HostRect Inside() const { return inside_; }
    HostRect Caret_Rect() const;
    TextPlace Place_Near(int x, int y) const;     ///< Of a point outside, one a little further on.
    TextRange Line_At(std::size_t offset) const;  ///< With its line break.
    HostDirection Caret_Direction() const;        ///< Of its line.

    void Select(std::size_t anchor, TextPlace const& caret);
    void Move_To(TextPlace const& place, bool extends)
    {
        Select(extends ? buffer.Anchor() : place.at, place);
    }

    /// Up or down by lines, staying in one column as long as nothing else happens.
    void Move_By_Lines(long lines, bool extends);

    // Where arrow keys lead: one step on as seen on the screen, and that end of the selection.
    TextPlace Side_Step(bool isRight) const;
    TextPlace Selection_End(bool isRight) const;

    long Line_Count() const { return static_cast<long>(lines_.Count()); }
    long First_Line() const { return firstLine_; }
    long Visible_Lines() const;  ///< Whose start is in view.
    void Scroll_To_Line(long line);

private:
    /// What is drawn beside the text.
    struct Marks {
        TextRange selection, unfinished;
        TextPlace caret;
        bool isActive = false;

        bool operator==(Marks const&) const = default;
    };

    int Line_Top(std::size_t line) const;
    TextPlace Caret() const;
    std::string_view Line_Text(std::size_t line) const;
    TextOrder Order_Of(std::size_t line) const;
    int Line_Left(std::size_t line) const;
    int X_Of(std::size_t line, TextPlace const& place) const;
    std::vector<HostRect> Range_Rects(std::size_t line, TextRange const& range) const;
    TextPlace Place_In_Line(std::size_t line, int x) const;
    TextPlace Kept_In_Line(std::size_t line, TextPlace const& place) const;
    long Whole_Lines() const;
    HostRect Lines_Rect(TextRange const& lines) const;
    HostRect Take_Text();
    HostRect Take_Marks();
    void Fill_View();
    void Follow_Caret();
    void Follow_Sideways();
    void Draw_Line(HostSurface& surface, std::size_t line, TextColors const& colors) const;
    void Draw_Marked(HostSurface& surface, std::size_t line, TextColors const& colors) const;
    void Draw_Underline(HostSurface& surface, std::size_t line, uint32_t color) const;

    TextLook look_;
    bool isMultiLine_;
    TextLines lines_;
    std::string shown_;               ///< what the lines are of
    Marks marks_;                     ///< on it, as drawn
    HostRect frame_, inside_, text_;  ///< inside the frame; where lines stand
    int scrollX_ = 0;                 ///< of one line
    long firstLine_ = 0;              ///< of several
    TextPlace caret_;                 ///< which side the caret is on, as long as it is there
    std::optional<int> column_;       ///< x that Move_By_Lines stays at
    std::size_t columnCaret_ = 0;     ///< and where that left the caret
};
