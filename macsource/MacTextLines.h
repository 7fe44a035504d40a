// The lines of a text in a field: how a line looks and how wide it is, and where a text wraps.
#pragma once

#include "MacText.h"
#include "MacTextOrder.h"

#include <string>
#include <vector>

/// How a field shows a text: its font, and placeholders for a password.
class TextLook {
public:
    TextLook(FontChoice const& font, bool isPassword) : font_(font), isPassword_(isPassword) {}

    int Ascent() const;
    int Text_Height() const;  ///< Ascent and descent.
    int Line_Height() const;  ///< With the leading.

    /// That of the text up to its first line break.
    HostDirection Direction(std::string_view paragraph) const;

    /// Width of the beginning of a line. Tabs go to the next multiple of eight blanks.
    int Width(std::string_view line, HostDirection direction = HostDirection::LeftToRight) const;
    void Draw(HostSurface& surface, std::string_view line, int x, int baseLine, uint32_t color,
              HostDirection direction) const;
    TextOrder Order(std::string_view line, HostDirection direction) const;
    bool Is_Password() const { return isPassword_; }

private:
    /// What stands between two tabs.
    struct Piece {
        std::size_t start, end;
        int x, width;
    };

    std::string_view Shown(std::string_view piece, std::string& changed) const;
    std::vector<Piece> Pieces(std::string_view line, HostDirection direction) const;
    void Add_Piece(std::string_view line, Piece const& piece, HostDirection direction,
                   std::vector<TextCell>& cells) const;

    FontChoice font_;
    bool isPassword_;
};

struct TextLine {
    std::size_t start = 0;
    std::size_t end = 0;   ///< without the line break
    std::size_t next = 0;  ///< start of the next line; the text's size in the last one
    HostDirection direction = HostDirection::LeftToRight;  ///< of its paragraph

    bool operator==(TextLine const&) const = default;
};

/// Always at least one line. The text is the owner's, which tells of changes. Without memory these throw, and
/// the lines are what they were.
class TextLines {
public:
    /// @param width  where it wraps; 0 for one line, whatever breaks the text has
    void Lay_Out(TextLook const& look, std::string_view text, int width);

    /// After text[changed.start, oldEnd) has become text[changed.start, changed.end).
    /// @return  the lines that are new; to the last one when those below have moved
    TextRange Change(TextLook const& look, std::string_view text, TextRange const& changed,
                     std::size_t oldEnd);

    std::size_t Count() const { return lines_.size(); }
    TextLine const& operator[](std::size_t line) const { return lines_[line]; }
    std::size_t Line_Of(std::size_t offset) const;

private:
    std::size_t Paragraph_Of(std::size_t line) const;

    int width_ = 0;
    std::vector<TextLine> lines_ = {TextLine{}};
};
