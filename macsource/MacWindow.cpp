// System windows: made for a palette, fitted to it, and taken down.
#include "MacWindow.h"
#include "MacFrame.h"
#include "MacMenuBar.h"

#include "ZVLibInternal.h"
#include "ZVPalette.h"

#include <strings.h>
#include <tuple>
#include <utility>

/// Room for a bar or the grow box.
static constexpr int StripSize = 15;

/// What a window is made of, which cannot be changed while it stands.
static constexpr uint32_t BuildFlags = ZV_PALF_SIZES | ZV_PALF_ZOOM | ZV_PALF_NO_CLOSE | ZV_PALF_PLAIN;

/// What it has along its edges, which is that of the palette in front.
static constexpr uint32_t EdgeFlags = ZV_PALF_HSCROLL | ZV_PALF_VSCROLL | ZV_PALF_NO_GROW_AREA;

// ---- what a window is like --------------------------------------------------------------------------------

/// The flags that a window of the kind can have.
static uint32_t Usable_Flags(uint32_t kind, uint32_t flags)
{
    bool const isPlain = flags & ZV_PALF_PLAIN;
    switch (kind) {
    case ZV_KIND_DOCUMENT:
    case ZV_KIND_FLOATER:
    case ZV_KIND_FIXED: return isPlain ? flags & ~uint32_t{ZV_PALF_SIZES} : flags;
    case ZV_KIND_MODAL: return flags & ~uint32_t{ZV_PALF_ZOOM | ZV_PALF_NO_CLOSE};
    case ZV_KIND_TRANSIENT: return flags & ~uint32_t{ZV_PALF_SIZES | ZV_PALF_ZOOM | ZV_PALF_NO_CLOSE};
    default: return flags;
    }
}

WindowStrips Strips_Of(uint32_t flags)
{
    bool const resizes = flags & ZV_PALF_SIZES;
    if (resizes && !(flags & ZV_PALF_NO_GROW_AREA)) return {StripSize, StripSize};
    WindowStrips const strips{flags & ZV_PALF_VSCROLL ? StripSize : 0,
                              flags & ZV_PALF_HSCROLL ? StripSize : 0};
    bool const hasBars = strips.right || strips.bottom;
    return resizes && !hasBars ? WindowStrips{-1, -1} : strips;
}

static HostWindowKind Host_Kind(uint32_t kind)
{
    switch (kind) {
    case ZV_KIND_MODAL: return HostWindowKind::Dialog;
    case ZV_KIND_FLOATER:
    case ZV_KIND_FIXED: return HostWindowKind::Floater;
    case ZV_KIND_ROOT:
    case ZV_KIND_APP: return HostWindowKind::Root;
    case ZV_KIND_TRANSIENT: return HostWindowKind::Popup;
    default: return HostWindowKind::Document;
    }
}

/// A window of a kind with the parts that it has, its client area still empty.
static HostWindowRequest Request_Of(uint32_t kind, uint32_t flags)
{
    HostWindowRequest request{.kind = Host_Kind(kind)};
    bool const isPlain = flags & ZV_PALF_PLAIN;
    request.hasFrame = !isPlain && kind != ZV_KIND_ROOT && kind != ZV_KIND_TRANSIENT;
    bool const isDocument = kind == ZV_KIND_DOCUMENT;
    bool const isFloater = kind == ZV_KIND_FLOATER || kind == ZV_KIND_FIXED;
    request.canClose = isDocument || (isFloater && !(flags & ZV_PALF_NO_CLOSE));
    request.canCollapse = isDocument;
    request.canZoom = (isDocument || isFloater) && (flags & ZV_PALF_ZOOM);
    bool const isDialog = kind == ZV_KIND_MODAL && request.hasFrame;
    request.canResize =
        kind == ZV_KIND_APP || ((isDocument || isFloater || isDialog) && (flags & ZV_PALF_SIZES) != 0);
    return request;
}

static HostRect Host_Client(ZVWindow const& window)
{
    WindowStrips const strips = Strips_Of(window.flags);
    return {window.left, window.top, window.left + window.width + strips.right,
            window.top + window.height + strips.bottom};
}

/// The window's own title, and failing that the palette's.
static char const* Title_For(ZVWindow const& window, ZVPalette const* palette)
{
    if (window.name) return window.name;
    return palette && palette->title ? palette->title : "";
}

uint32_t Background_Of(ZVWindow const& window)
{
    bool const isBehind = window.kind == ZV_KIND_ROOT || window.kind == ZV_KIND_APP;
    return static_cast<uint32_t>(GetColorZV(isBehind ? ZV_PEN_ROOT : ZV_PEN_PALETTE));
}

static bool Has_Edge(ZVWindow const& window)
{
    return window.kind == ZV_KIND_MODAL && window.flags & ZV_PALF_PLAIN;
}

void Draw_Window_Edge(ZVSysWindow& native)
{
    if (Has_Edge(native.window)) Draw_Raised_Edge(native.port, native.port.surface.Bounds());
}

static WindowLimits Limits_For(ZVWindow const& window, ZVPalette const* palette)
{
    constexpr int unlimited = 16384;
    HostRect const client = window.sysWindow->host->Client();
    WindowLimits limits{client.Width(), client.Height(), client.Width(), client.Height()};
    if (!palette) return limits;
    WindowStrips const strips = Strips_Of(window.flags);
    bool const isBoth = window.kind == ZV_KIND_APP || window.flags & ZV_PALF_SIZE_BOTH;
    if (isBoth || window.flags & ZV_PALF_SIZE_X) {
        limits.minWidth = palette->minWidth + strips.right;
        limits.maxWidth = unlimited;
    }
    if (isBoth || window.flags & ZV_PALF_SIZE_Y) {
        limits.minHeight = palette->minHeight + palette->y + strips.bottom;
        limits.maxHeight = unlimited;
    }
    return limits;
}

WindowLimits Limits_Of(ZVWindow const& window)
{
    return Limits_For(window, window.activePalette);
}

static void Limit_Size(ZVWindow& window, ZVPalette const& palette)
{
    WindowLimits const limits = Limits_For(window, &palette);
    window.sysWindow->host->Set_Size_Limits(limits.minWidth, limits.minHeight, limits.maxWidth,
                                            limits.maxHeight);
}

// ---- making and freeing -----------------------------------------------------------------------------------

ZVSysWindow::ZVSysWindow(ZVWindow& owner, std::unique_ptr<HostWindow> made)
    : window(owner), host(std::move(made)), port{host->Surface(), {}, nullptr, nullptr},
      knownWidth(host->Client().Width()), knownHeight(host->Client().Height())
{
    host->owner = &owner;
    port.surface.Fill(port.surface.Bounds(), Background_Of(owner));
}

ZVSysWindow::~ZVSysWindow()
{
    Hold_Mouse(nullptr);
    if (Current_Port() == &port) Make_Current(nullptr);
    if (ZVEnv && ZVEnv->savedPort == &port) ZVEnv->savedPort = nullptr;
}

/// The client area of a new window, which goes down as far as its title would be under the menu bar.
static HostRect Clear_Of_Bar(ZVWindow& window, HostWindowRequest const& request)
{
    if (request.hasFrame && window.kind != ZV_KIND_ROOT) {
        HostRect frame = Host_Client(window);
        HostFrame const edges = Display()->Frame_Of(request);
        frame = {frame.left - edges.left, frame.top - edges.top, frame.right + edges.right,
                 frame.bottom + edges.bottom};
        window.top += Way_Below_Menu_Bar(frame);
    }
    return Host_Client(window);
}

/// Takes the native window down; the record stays.
static void Dispose_Native(ZVWindow& window)
{
    window.verticalBar = window.horizontalBar = nullptr;
    if (ZVEnv->rootSysWindow == window.sysWindow) ZVEnv->rootSysWindow = nullptr;
    delete std::exchange(window.sysWindow, nullptr);
}

/// Throws without memory; what is made by then is the window's.
static bool Make_Native(ZVWindow& window, ZVPalette const* palette)
{
    HostWindowRequest request = Request_Of(window.kind, window.flags);
    request.client = Clear_Of_Bar(window, request);
    request.title = Title_For(window, palette);
    std::unique_ptr<HostWindow> host = Display()->Make_Window(request);
    if (!host) return false;
    window.sysWindow = new ZVSysWindow(window, std::move(host));
    window.sysWindow->title = request.title;
    Draw_Window_Edge(*window.sysWindow);
    Make_Bars(window);
    if (palette) Limit_Size(window, *palette);
    window.sysWindow->host->Show();
    return true;
}

long Make_SysWindow(ZVWindow* window, ZVPalette* palette)
{
    if (window->sysWindow) return 1;
    if (!Display()) return 0;
    window->flags = Usable_Flags(window->kind, window->flags);
    if (palette) palette->flags = Usable_Flags(palette->kind, palette->flags);
    if (!Guarded([=] { return Make_Native(*window, palette); })) {
        Dispose_Native(*window);
        return 0;
    }
    if (palette) ZVEnv->pendingPalette = palette;
    if (window->kind == ZV_KIND_ROOT || window->kind == ZV_KIND_APP) ZVEnv->rootSysWindow = window->sysWindow;
    ZVEnv->frontWindow = Mac_FrontNonFloatingWindow();
    return 1;
}

/// Keys go from a window that is closed to that of the modal palette around it, or else to that of the
/// palette that is active still, and not to whichever the desktop has in front then.
static void Hand_Keys_On(ZVWindow const& window)
{
    if (!window.sysWindow || Display()->Front_Window() != window.sysWindow->host.get()) return;
    ZVPalette const* const next = ZVEnv->modalPalette ? ZVEnv->modalPalette : ZVEnv->activePalette;
    Mac_Select_Window(GetParentSysWindow(next, nullptr, nullptr));
}

void Free_SysWindow(ZVWindow* window)
{
    Hand_Keys_On(*window);
    bool const wasFront = ZVEnv->frontWindow == window;
    Dispose_Native(*window);
    Free_Window(window);
    if (wasFront) ZVEnv->frontWindow = Mac_FrontNonFloatingWindow();
}

// ---- fitting ----------------------------------------------------------------------------------------------

/// Another native window in place of the one that cannot become what the palette asks for, and which stays
/// when there is none to be had.
static void Replace_Native(ZVWindow& window, ZVPalette& palette)
{
    auto const form = [&] {
        return std::tie(window.kind, window.flags, window.top, window.width, window.height);
    };
    auto const oldForm = std::tuple(window.kind, window.flags, window.top, window.width, window.height);
    std::unique_ptr<ZVSysWindow> old(std::exchange(window.sysWindow, nullptr));
    bool const hadKeys = Display()->Front_Window() == old->host.get();
    window.kind = palette.kind;
    window.flags = palette.flags;
    window.width = palette.width;
    window.height = palette.height + palette.y;
    if (Make_SysWindow(&window, &palette)) {
        if (ZVEnv->rootSysWindow == old.get()) ZVEnv->rootSysWindow = nullptr;
        if (hadKeys) Mac_Select_Window(&window);  // so that no other one has them in between
        Invalidate(window);
        return;
    }
    form() = oldForm;
    window.sysWindow = old.release();
    window.verticalBar = window.sysWindow->verticalBar.get();
    window.horizontalBar = window.sysWindow->horizontalBar.get();
    window.sysWindow->port.isIncomplete = true;
}

/// Background for what the surface has gained; what lies there has to be drawn again. Its edge moves along.
static void Cover_New_Area(ZVSysWindow& native)
{
    HostRect const all = native.port.surface.Bounds();
    if (all.right == native.knownWidth && all.bottom == native.knownHeight) return;
    uint32_t const ground = Background_Of(native.window);
    if (Has_Edge(native.window))
        Draw_Bevel(native.port, {0, 0, native.knownWidth, native.knownHeight}, ground, ground, ground);
    for (HostRect const& strip : {HostRect{native.knownWidth, 0, all.right, all.bottom},
                                  HostRect{0, native.knownHeight, all.right, all.bottom}}) {
        if (strip.IsEmpty()) continue;
        native.port.surface.Fill(strip, ground);
        Invalidate(native.window, strip);
    }
    Draw_Window_Edge(native);
    native.knownWidth = all.right;
    native.knownHeight = all.bottom;
}

/// Bars as the palette has them. False when the window has them so already. Without memory it has none until
/// it is completed.
static bool Change_Edges(ZVWindow& window, ZVPalette const& palette)
{
    uint32_t const wanted = (window.flags & ~EdgeFlags) | (palette.flags & EdgeFlags);
    if (std::exchange(window.flags, wanted) == wanted) return false;
    Free_Bars(window);
    if (!Paint(&window.sysWindow->port, [&] { Make_Bars(window); })) {
        Free_Bars(window);
        window.flags &= ~(ZV_PALF_HSCROLL | ZV_PALF_VSCROLL);
    }
    Invalidate(window);
    return true;
}

static void Resize_Native(ZVWindow& window, long width, long height)
{
    int32_t const oldWidth = std::exchange(window.width, static_cast<int32_t>(width));
    int32_t const oldHeight = std::exchange(window.height, static_cast<int32_t>(height));
    ZVSysWindow& native = *window.sysWindow;
    if (!Paint(&native.port, [&] { native.host->Set_Client(Host_Client(window)); })) {
        window.width = oldWidth;
        window.height = oldHeight;
        return;
    }
    Cover_New_Area(native);
}

void Rebuild_SysWindow(ZVWindow* window, ZVPalette* palette)
{
    if (!window->sysWindow) return;
    palette->flags = Usable_Flags(palette->kind, palette->flags);
    if (palette->kind != ZV_KIND_MODAL && ((window->flags ^ palette->flags) & BuildFlags)) {
        Replace_Native(*window, *palette);
    } else {
        bool const changes = Change_Edges(*window, *palette);
        long const height = palette->height + palette->y;
        if (changes || palette->width != window->width || height != window->height)
            Resize_Native(*window, palette->width, height);
    }
    if (!window->sysWindow) return;
    Limit_Size(*window, *palette);
    Move_Sliders(window);
    char const* const title = Title_For(*window, palette);
    if (strcasecmp(title, window->sysWindow->title.c_str()) != 0) Set_SysWindowName(window, title);
}

bool Take_Bounds(ZVWindow& window)
{
    HostRect const client = window.sysWindow->host->Client();
    WindowStrips const strips = Strips_Of(window.flags);
    int32_t const width = client.Width() - strips.right, height = client.Height() - strips.bottom;
    bool const isResized = width != window.width || height != window.height;
    window.left = client.left;
    window.top = client.top;
    window.width = width;
    window.height = height;
    Cover_New_Area(*window.sysWindow);
    return isResized;
}

void Set_SysWindowName(ZVWindow* window, char const* name)
{
    if (!window->sysWindow) return;
    ZVSysWindow& native = *window->sysWindow;
    Paint(&native.port, [&] {
        std::string title(name);
        native.host->Set_Title(title);
        native.title = std::move(title);
    });
}

// ---- finding ----------------------------------------------------------------------------------------------

ZVWindow* GetZVWind_From_SysWind(ZVSysWindow const* window)
{
    return window ? &window->window : nullptr;
}

ZVWindow* Window_Of(HostWindow const* host)
{
    return host ? static_cast<ZVWindow*>(host->owner) : nullptr;
}

ZVWindow* Mac_Find_Window(long x, long y, long* localX, long* localY)
{
    *localX = *localY = 0;
    HostWindow* const host =
        Display() ? Display()->Window_At(static_cast<int>(x), static_cast<int>(y)) : nullptr;
    if (!host || !host->Client().Contains(static_cast<int>(x), static_cast<int>(y))) return nullptr;
    *localX = x - host->Client().left;
    *localY = y - host->Client().top;
    return Window_Of(host);
}

ZVPort* Mac_Window_Port(ZVWindow* window)
{
    return window && window->sysWindow ? &window->sysWindow->port : nullptr;
}

static void Store(HostRect const& from, ZVRectT<long>* rect)
{
    rect->Set(from.left, from.top, from.Width(), from.Height());
}

void GetClientRectZV(ZVWindow const* window, ZVRectT<long>* rect)
{
    if (!rect) return;
    *rect = {};
    if (window && window->sysWindow) Store(window->sysWindow->host->Client(), rect);
}

void GetWindowRectZV(ZVWindow const* window, ZVRectT<long>* rect)
{
    if (!rect) return;
    *rect = {};
    if (!window || !window->sysWindow) return;
    HostRect const client = window->sysWindow->host->Client();
    HostFrame const frame = window->sysWindow->host->Frame();
    Store({client.left - frame.left, client.top - frame.top, client.right + frame.right,
           client.bottom + frame.bottom},
          rect);
}

/// The frame of the window that would hold the palette.
static HostFrame Frame_For(ZVPalette const& palette)
{
    return Display()
               ? Display()->Frame_Of(Request_Of(palette.kind, Usable_Flags(palette.kind, palette.flags)))
               : HostFrame();
}

void Get_SysWindowDimFromPalette(ZVPalette const* palette, ZVRectT<long>* size)
{
    HostFrame const frame = Frame_For(*palette);
    WindowStrips const strips = Strips_Of(Usable_Flags(palette->kind, palette->flags));
    bool const hasTabs = palette->kind == ZV_KIND_FLOATER;
    size->Set(0, 0, palette->width + strips.right + frame.left + frame.right,
              palette->height + (hasTabs ? ZVEnv->style->tabHeight : 0) + strips.bottom + frame.top +
                  frame.bottom);
}

void OffsetWindowToClient(ZVPalette const* palette, long* x, long* y)
{
    HostFrame const frame = Frame_For(*palette);
    *x += frame.left;
    *y += frame.top;
}
