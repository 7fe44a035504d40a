// A window of the display in memory.
#pragma once

#include "MemoryDisplay.h"
#include "WindowPixels.h"

class MemoryWindow : public HostWindow {
public:
    MemoryWindow(MemoryDisplay& display, HostWindowRequest const& request);
    ~MemoryWindow() override;
    MemoryWindow(MemoryWindow const&) = delete;
    MemoryWindow& operator=(MemoryWindow const&) = delete;

    HostSurface& Surface() override { return pixels_.Surface(); }
    void Show() override;
    void Hide() override;
    void Raise() override;
    void Set_Title(std::string const& title) override { request_.title = title; }
    HostRect Client() const override { return request_.client; }
    void Set_Client(HostRect const& client) override;
    HostFrame Frame() const override { return frame_; }
    void Set_Size_Limits(int minWidth, int minHeight, int maxWidth, int maxHeight) override;
    void Present() override;
    void Start_Text(HostRect const&) override { isTyping_ = true; }
    void Stop_Text() override { isTyping_ = false; }

    HostWindowRequest const& Request() const { return request_; }
    bool IsShown() const { return isShown_; }
    bool IsTyping() const { return isTyping_; }
    HostSurface const& Shown() const { return shown_.Surface(); }
    WindowPixels const& Shown_Pixels() const { return shown_; }

    /// The nearest that the limits of size allow; the upper left corner stays.
    HostRect Limited(HostRect const& client) const;

    /// Where it was before it was zoomed.
    std::optional<HostRect> unzoomed;

private:
    MemoryDisplay& display_;
    HostWindowRequest request_;
    HostFrame frame_;
    WindowPixels pixels_, shown_;
    int minWidth_ = 1, minHeight_ = 1, maxWidth_ = 0, maxHeight_ = 0;
    bool isShown_ = false, isTyping_ = false;
};
