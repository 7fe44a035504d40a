#include "MacTextBuffer.h"

#include <algorithm>

void TextBuffer::Set_Text(std::string_view text)
{
    text_ = text;
    last_ = {};
    composition_.clear();
    Select(anchor_, caret_);
}

// ---- selection --------------------------------------------------------------------------------------------

TextRange TextBuffer::Selection() const
{
    auto const [start, end] = std::minmax(anchor_, caret_);
    return {start, end};
}

std::string_view TextBuffer::Selected() const
{
    auto const [start, end] = Selection();
    return std::string_view(text_).substr(start, end - start);
}

void TextBuffer::Select(std::size_t anchor, std::size_t caret)
{
    anchor_ = Place_At(text_, anchor);
    caret_ = Place_At(text_, caret);
    composition_.clear();
    last_.isOpen = false;
}

// ---- changes ----------------------------------------------------------------------------------------------

std::string TextBuffer::With(std::string_view inserted) const
{
    auto const [start, end] = Selection();
    return std::string(text_).replace(start, end - start, inserted);
}

/// A change beside the last one that belongs to it. Erasing goes on only while nothing was selected.
bool TextBuffer::Continue_Change(TextRange const& range, std::string_view inserted, ChangeKind kind)
{
    if (!last_.isOpen || last_.kind != kind) return false;
    std::string_view const removed = std::string_view(text_).substr(range.start, range.end - range.start);
    switch (kind) {
    case ChangeKind::Typed:
        if (!range.IsEmpty() || range.start != last_.at + last_.inserted.size()) return false;
        last_.inserted += inserted;
        return true;
    case ChangeKind::ErasedBefore:
        if (range.end != last_.at) return false;
        last_.removed.insert(0, removed);
        last_.at = range.start;
        return true;
    case ChangeKind::ErasedBehind:
        if (range.start != last_.at) return false;
        last_.removed += removed;
        return true;
    default: return false;
    }
}

void TextBuffer::Replace(TextRange const& range, std::string_view inserted, ChangeKind kind)
{
    std::size_t const length = range.end - range.start;
    text_.reserve(text_.size() - length + inserted.size());  // what can be undone is what is done
    if (!Continue_Change(range, inserted, kind))
        last_ = {kind, range.start, text_.substr(range.start, length), std::string(inserted)};
    text_.replace(range.start, length, inserted);
    std::size_t const caret = range.start + inserted.size();
    Select(caret, caret);
    last_.isOpen = true;
}

void TextBuffer::Insert(std::string_view text, bool isTyped)
{
    Replace(Selection(), text, isTyped ? ChangeKind::Typed : ChangeKind::Other);
}

bool TextBuffer::Erase_Before()
{
    bool const isSelected = anchor_ != caret_;
    TextRange const range = isSelected ? Selection() : TextRange{Previous_Place(text_, caret_), caret_};
    if (range.IsEmpty()) return false;
    Replace(range, "", isSelected ? ChangeKind::Other : ChangeKind::ErasedBefore);
    return true;
}

bool TextBuffer::Erase_Behind()
{
    bool const isSelected = anchor_ != caret_;
    TextRange const range = isSelected ? Selection() : TextRange{caret_, Next_Place(text_, caret_)};
    if (range.IsEmpty()) return false;
    Replace(range, "", isSelected ? ChangeKind::Other : ChangeKind::ErasedBehind);
    return true;
}

bool TextBuffer::Undo()
{
    if (last_.kind == ChangeKind::None) return false;
    text_.replace(last_.at, last_.inserted.size(), last_.removed);
    std::swap(last_.removed, last_.inserted);
    // What came back shows as selected.
    Select(last_.at, last_.at + last_.inserted.size());
    return true;
}

// ---- unfinished text --------------------------------------------------------------------------------------

void TextBuffer::Compose(std::string_view text, std::size_t caret)
{
    if (text.empty() && composition_.empty()) return;
    composition_ = text;
    compositionCaret_ = Place_At(text, caret);
    last_.isOpen = false;
}

std::string TextBuffer::Shown_Text() const
{
    return composition_.empty() ? text_ : With(composition_);
}

TextRange TextBuffer::Composition() const
{
    std::size_t const start = Selection().start;
    return {start, start + composition_.size()};
}

std::size_t TextBuffer::Shown_Caret() const
{
    return composition_.empty() ? caret_ : Selection().start + compositionCaret_;
}

TextRange TextBuffer::Shown_Selection() const
{
    if (composition_.empty()) return Selection();
    return {Shown_Caret(), Shown_Caret()};
}
