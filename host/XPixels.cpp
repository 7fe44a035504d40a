#include "XPixels.h"

#include "XWindow.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/shm.h>

#include <bit>
#include <new>
#include <utility>
#include <vector>

namespace {

/// Whether a request failed, as long as this exists. Other errors of the server are not told apart: nothing
/// else is asked meanwhile.
class ErrorWatch {
public:
    explicit ErrorWatch(Display* display) : display_(display)
    {
        XSync(display_, False);
        hasFailed = false;
        earlier_ = XSetErrorHandler([](Display*, XErrorEvent*) {
            hasFailed = true;
            return 0;
        });
    }
    ~ErrorWatch() { XSetErrorHandler(earlier_); }
    ErrorWatch(ErrorWatch const&) = delete;
    ErrorWatch& operator=(ErrorWatch const&) = delete;

    bool Has_Failed() const
    {
        XSync(display_, False);
        return hasFailed;
    }

private:
    static inline bool hasFailed = false;
    Display* display_;
    XErrorHandler earlier_;
};

/// A piece of memory that the server has mapped as well.
class Segment {
public:
    Segment(Display* display, std::size_t bytes) : display_(display), bytes_(bytes)
    {
        info_.shmid = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
        if (info_.shmid < 0) throw std::bad_alloc();
        void* const memory = shmat(info_.shmid, nullptr, 0);
        bool isAttached = false;
        if (memory != reinterpret_cast<void*>(-1)) {
            info_.shmaddr = static_cast<char*>(memory);
            info_.readOnly = True;
            ErrorWatch const watch(display);
            isAttached = XShmAttach(display, &info_) && !watch.Has_Failed();
            if (!isAttached) shmdt(memory);
        }
        // It goes when both sides have let go of it, whatever becomes of this process.
        shmctl(info_.shmid, IPC_RMID, nullptr);
        if (!isAttached) throw std::bad_alloc();
#ifdef MADV_POPULATE_WRITE
        // All pages at once: to touch each for the first time takes longer than to fill it.
        madvise(memory, bytes, MADV_POPULATE_WRITE);
#endif
    }
    ~Segment()
    {
        XShmDetach(display_, &info_);
        shmdt(info_.shmaddr);
    }
    Segment(Segment const&) = delete;
    Segment& operator=(Segment const&) = delete;

    std::size_t Bytes() const
    {
        return bytes_;
    }
    XShmSegmentInfo* Info()
    {
        return &info_;
    }
    uint32_t* Words()
    {
        return reinterpret_cast<uint32_t*>(info_.shmaddr);
    }

private:
    Display* display_;
    std::size_t bytes_;
    XShmSegmentInfo info_{};
};

/// Segments that windows have left, for the next ones: fresh memory is what costs most in a new window.
class SpareSegments {
public:
    std::unique_ptr<Segment> Take(std::size_t bytes)
    {
        for (auto& spare : spares_)
            if (spare->Bytes() >= bytes && spare->Bytes() / 4 <= bytes) {
                auto found = std::move(spare);
                std::erase(spares_, nullptr);
                return found;
            }
        return nullptr;
    }

    void Give_Back(std::unique_ptr<Segment> segment)
    {
        if (segment->Bytes() > LargestSpare) return;
        if (spares_.size() == Capacity) spares_.erase(spares_.begin());
        spares_.push_back(std::move(segment));
    }

private:
    static constexpr std::size_t Capacity = 4;
    static constexpr std::size_t LargestSpare = std::size_t{16} << 20;
    std::vector<std::unique_ptr<Segment>> spares_;
};

class SharedRoom : public PixelRoom {
public:
    SharedRoom(std::unique_ptr<Segment> segment, SpareSegments& spares)
        : segment_(std::move(segment)), spares_(spares)
    {
    }
    ~SharedRoom() override { spares_.Give_Back(std::move(segment_)); }

    uint32_t* Words() override { return segment_->Words(); }
    XShmSegmentInfo* Info() const { return segment_->Info(); }

private:
    std::unique_ptr<Segment> segment_;
    SpareSegments& spares_;
};

class SharedPixels : public XPixels {
public:
    SharedPixels(XWindow const& window, XWindowAttributes const& attributes)
        : display_(window.display), visual_(attributes.visual), depth_(attributes.depth)
    {
        XGCValues values{};
        values.graphics_exposures = False;
        context_ = XCreateGC(display_, window.window, GCGraphicsExposures, &values);
    }
    ~SharedPixels() override { XFreeGC(display_, context_); }
    SharedPixels(SharedPixels const&) = delete;
    SharedPixels& operator=(SharedPixels const&) = delete;

    std::unique_ptr<PixelRoom> Make_Room(std::size_t words) override
    {
        std::size_t const bytes = words * sizeof(uint32_t);
        auto segment = spares_.Take(bytes);
        try {
            if (!segment) segment = std::make_unique<Segment>(display_, bytes);
        } catch (std::bad_alloc const&) {
            return Make_Private_Room(words);
        }
        return std::make_unique<SharedRoom>(std::move(segment), spares_);
    }

    bool Show(SDL_Window* window, WindowPixels const& pixels, HostRegion const& region) override
    {
        auto const* const room = dynamic_cast<SharedRoom const*>(&pixels.Room());
        if (!room) return false;
        XShmSegmentInfo* const info = room->Info();
        XImage* const image = XShmCreateImage(display_, visual_, static_cast<unsigned>(depth_), ZPixmap,
                                              info->shmaddr, info, static_cast<unsigned>(pixels.Room_Width()),
                                              static_cast<unsigned>(pixels.Room_Height()));
        if (!image) return false;
        Window const target = X_Window_Of(window).window;
        for (int i = 0; i < region.Box_Count(); ++i) {
            HostRect const box = region.Box(i);
            XShmPutImage(display_, target, context_, image, box.left, box.top, box.left, box.top,
                         static_cast<unsigned>(box.Width()), static_cast<unsigned>(box.Height()), False);
        }
        XFree(image);  // the pixels stay
        XSync(display_, False);
        return true;
    }

private:
    Display* display_;
    Visual* visual_;
    int depth_;
    GC context_;
    SpareSegments spares_;
};

bool Has_Words(XWindow const& window, XWindowAttributes const& attributes)
{
    Visual const& visual = *attributes.visual;
    bool const isTrueColor =
        visual.red_mask == 0xFF0000 && visual.green_mask == 0xFF00 && visual.blue_mask == 0xFF;
    constexpr int OwnOrder = std::endian::native == std::endian::little ? LSBFirst : MSBFirst;
    return isTrueColor && (attributes.depth == 24 || attributes.depth == 32) &&
           ImageByteOrder(window.display) == OwnOrder && BitmapPad(window.display) == 32;
}

}  // namespace

std::unique_ptr<XPixels> Make_X_Pixels(SDL_Window* window)
{
    XWindow const x = X_Window_Of(window);
    XWindowAttributes attributes;
    if (!x.display || !XShmQueryExtension(x.display) ||
        !XGetWindowAttributes(x.display, x.window, &attributes) || !Has_Words(x, attributes))
        return nullptr;
    try {
        Segment const trial(x.display, sizeof(uint32_t));
    } catch (std::bad_alloc const&) {
        return nullptr;  // the server is on another machine
    }
    return std::make_unique<SharedPixels>(x, attributes);
}
