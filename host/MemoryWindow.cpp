#include "MemoryWindow.h"

#include <algorithm>

MemoryWindow::MemoryWindow(MemoryDisplay& display, HostWindowRequest const& request)
    : display_(display), request_(request), frame_(display.Frame_Of(request)),
      pixels_(Window_Client(request.client).Width(), Window_Client(request.client).Height()),
      shown_(Window_Client(request.client).Width(), Window_Client(request.client).Height())
{
    request_.client = Window_Client(request.client);
}

MemoryWindow::~MemoryWindow()
{
    Hide();
    display_.Forget(*this);
}

void MemoryWindow::Show()
{
    if (isShown_) return;
    display_.Place_In_Front(*this, request_.kind);
    isShown_ = true;
    if (Takes_Keys(request_.kind) || !display_.Front_Window()) display_.Give_Keys(this);
}

void MemoryWindow::Hide()
{
    if (!isShown_) return;
    isShown_ = false;
    display_.Take_Off(*this);
}

void MemoryWindow::Raise()
{
    if (!isShown_) return;
    display_.Place_In_Front(*this, request_.kind);
    display_.Give_Keys(this);
}

void MemoryWindow::Set_Client(HostRect const& client)
{
    HostRect const wanted = Window_Client(client), old = request_.client;
    if (wanted.Width() != old.Width() || wanted.Height() != old.Height()) {
        shown_.Resize(wanted.Width(), wanted.Height());
        try {
            pixels_.Resize(wanted.Width(), wanted.Height());
        } catch (std::bad_alloc const&) {
            shown_.Resize(old.Width(), old.Height());  // for which there is room
            pixels_.Surface().Touch_All();
            throw;
        }
    }
    request_.client = wanted;
}

void MemoryWindow::Set_Size_Limits(int minWidth, int minHeight, int maxWidth, int maxHeight)
{
    minWidth_ = minWidth;
    minHeight_ = minHeight;
    maxWidth_ = maxWidth;
    maxHeight_ = maxHeight;
}

HostRect MemoryWindow::Limited(HostRect const& client) const
{
    auto const limit = [](int size, int least, int most) {
        return std::max(most > 0 ? std::min(size, most) : size, least);
    };
    return {client.left, client.top, client.left + limit(client.Width(), minWidth_, maxWidth_),
            client.top + limit(client.Height(), minHeight_, maxHeight_)};
}

void MemoryWindow::Present()
{
    HostRegion const touched = pixels_.Surface().Take_Touched();
    for (int i = 0; i < touched.Box_Count(); ++i) {
        HostRect const box = touched.Box(i);
        shown_.Surface().Blit(pixels_.Surface(), box, box.left, box.top);
    }
}
