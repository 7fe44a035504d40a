// A spec or name under construction, in a buffer of the size that specs are limited to.
#pragma once

#include "ZVFileSpec.h"

#include <cstring>
#include <string_view>

/// What would grow beyond the buffer becomes an empty text for good: it is no name at all rather than that of
/// some other file.
class SpecText {
public:
    SpecText() { text_[0] = 0; }
    explicit SpecText(std::string_view text) : SpecText() { Append(text); }
    SpecText(std::string_view first, std::string_view second) : SpecText(first) { Append(second); }

    SpecText& Append(std::string_view text)
    {
        if (text.size() >= sizeof text_ - length_) fits_ = false;
        if (!fits_) {
            length_ = 0;
        } else {
            std::memcpy(text_ + length_, text.data(), text.size());
            length_ += text.size();
        }
        text_[length_] = 0;
        return *this;
    }

    /// Cuts the text to at most that length.
    void Cut(std::size_t length)
    {
        if (length < length_) length_ = length;
        text_[length_] = 0;
    }

    bool Fits() const { return fits_; }
    std::size_t Length() const { return length_; }
    std::string_view View() const { return {text_, length_}; }
    char const* Text() const { return text_; }
    char* Text() { return text_; }  ///< for changes that keep the length

private:
    char text_[ZV_SPEC_SIZE];
    std::size_t length_ = 0;
    bool fits_ = true;
};
