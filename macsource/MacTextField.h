// The text field of an item: types 5, 6 and 7 of one line, type 19 of several.
#pragma once

#include "MacNativeItem.h"
#include "MacTextView.h"
#include "interface/HitTest.h"

class TextField : public ZVNativeItem, public MouseTracker {
public:
    explicit TextField(ZVItem& item);
    ~TextField() override;

    void Draw() override;
    void Show_State() override;
    void Set_Focus(bool hasFocus) override;

    void Track(long x, long y) override;
    void Finish(long x, long y) override;

    HostRect Bounds() const;  ///< With its frame, in the system window.
    bool Is_Multi_Line() const { return view_.Is_Multi_Line(); }

    /// Places the caret and follows the mouse, which makes this a word or a line with further quick presses.
    /// @param reports  event 5 goes out with the release
    void Press(int x, int y, bool reports);
    void Blink();

    void Select_All();

    /// Arrows, Home, Page Up, End and Page Down.
    void Move(unsigned code, bool extends, bool byWord);

    // What follows answers whether the text has changed. What the field does not take, it beeps at.
    bool Erase(bool isBehind);
    bool Type(std::string_view text);
    bool Cut();
    bool Paste();
    bool Undo();

    void Copy() const;
    void Compose(std::string_view text, int caret);

    void Store_Text();  ///< as the item's state

    void Get_Properties(ZVTextEditorProperties& properties);
    void Set_Properties(ZVTextEditorProperties const& properties);

private:
    TextColors Colors() const;
    void Redraw(HostRect const& area);
    void Show_Change();
    void Place_Input_Method();
    void Release_Keyboard();
    bool Is_Disabled() const { return item_.flags & ZV_ITEMF_DISABLED; }
    void Count_Press(int x, int y);
    TextRange Unit_At(std::size_t offset) const;
    void Select_To(int x, int y);
    ZVPlace In_Window(long x, long y) const;
    unsigned Effective_Key(unsigned code, bool byWord) const;
    TextPlace Side_Step(bool isRight, bool extends, bool byWord) const;
    bool Insert(std::string_view text, bool isTyped);
    bool Accepts(std::string const& text) const;
    std::size_t Capacity() const;

    ZVItem& item_;
    TextView view_;
    bool hasFocus_ = false;
    bool isBehind_ = false;    ///< some change found no memory to be shown
    uint32_t blinkStart_ = 0;  ///< ticks
    HostRect inputPlace_;      ///< of the caret, as the input method knows it

    // The press, and those that came quickly before it.
    int pressCount_ = 0;
    int pressX_ = 0, pressY_ = 0;
    uint32_t pressTime_ = 0;
    TextRange pressed_;  ///< what the press has selected
    bool reportsRelease_ = false;
    uint32_t scrollTime_ = 0;  ///< ticks, of the last step beside the view
};

/// The field of an item on screen; null for another item.
TextField* Text_Field_Of(ZVItem const* item);
