// The text of a field while it is edited: its selection, the last change, which can be undone, and what an
// input method has not finished yet. Knows nothing of lines and pixels.
#pragma once

#include "MacTextSteps.h"

#include <string>

class TextBuffer {
public:
    std::string const& Text() const { return text_; }

    /// Another text, which came from outside: nothing is left to undo, the caret stays as far as it can.
    void Set_Text(std::string_view text);

    std::size_t Caret() const { return caret_; }
    TextRange Selection() const;
    std::string_view Selected() const;

    /// From the anchor to the caret, both moved back to places of carets.
    void Select(std::size_t anchor, std::size_t caret);
    void Select_All() { Select(0, text_.size()); }
    void Move_To(std::size_t caret, bool extends) { Select(extends ? anchor_ : caret, caret); }
    std::size_t Anchor() const { return anchor_; }

    /// The text as Insert would leave it.
    std::string With(std::string_view inserted) const;

    /// Puts a text in place of the selection. What is typed in a row is one change.
    void Insert(std::string_view text, bool isTyped);

    // The selection, else what is beside the caret. False when there is nothing.
    bool Erase_Before();
    bool Erase_Behind();

    /// Takes the last change back, or makes it again. False when there is none.
    bool Undo();

    /// The input method's unfinished text, shown in place of the selection; empty for none. The caret is an
    /// offset in it.
    void Compose(std::string_view text, std::size_t caret);

    // With the unfinished text.
    std::string Shown_Text() const;
    std::size_t Shown_Caret() const;
    TextRange Shown_Selection() const;  ///< Empty at the caret while there is unfinished text.
    TextRange Composition() const;      ///< The unfinished text.

private:
    enum class ChangeKind { None, Typed, ErasedBefore, ErasedBehind, Other };

    /// `removed` was replaced by `inserted`.
    struct Change {
        ChangeKind kind = ChangeKind::None;
        std::size_t at = 0;
        std::string removed, inserted;
        bool isOpen = false;  ///< the next one of its kind goes on with it
    };

    void Replace(TextRange const& range, std::string_view inserted, ChangeKind kind);
    bool Continue_Change(TextRange const& range, std::string_view inserted, ChangeKind kind);

    std::string text_;
    std::size_t anchor_ = 0, caret_ = 0;
    Change last_;
    std::string composition_;
    std::size_t compositionCaret_ = 0;
};
