#include "MemoryDisplay.h"

#include "Characters.h"
#include "MemoryDesk.h"
#include "MemoryWindow.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr HostFrame FrameSize{.left = 1, .top = 22, .right = 1, .bottom = 1};

/// Of a key that is held, in milliseconds.
constexpr uint64_t RepeatDelay = 500, RepeatInterval = 30;

/// Bytes of the UTF-8 character at `place`, and the character itself; a byte that begins none stands for
/// itself.
std::size_t Read_Character(std::string const& text, std::size_t place, char32_t& character)
{
    auto const byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    unsigned char const first = byte(place);
    std::size_t const length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 1;
    character = length == 1 ? first : first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (place + i >= text.size() || (byte(place + i) & 0xC0) != 0x80) {
            character = first;
            return 1;
        }
        character = character << 6 | (byte(place + i) & 0x3F);
    }
    return length;
}

}  // namespace

std::unique_ptr<HostDisplay> Make_Memory_Display(int width, int height)
{
    return std::make_unique<MemoryDisplay>(width, height);
}

MemoryDisplay::MemoryDisplay(int width, int height) : screen_{0, 0, width, height} {}
MemoryDisplay::~MemoryDisplay() = default;

// ---- the service ------------------------------------------------------------------------------------------

std::vector<HostMonitor> MemoryDisplay::Monitors() const
{
    return {{.bounds = screen_, .usable = screen_}};
}

HostFrame MemoryDisplay::Frame_Of(HostWindowRequest const& request)
{
    return request.hasFrame && request.kind != HostWindowKind::Popup ? FrameSize : HostFrame();
}

std::unique_ptr<HostWindow> MemoryDisplay::Make_Window(HostWindowRequest const& request)
{
    return std::make_unique<MemoryWindow>(*this, request);
}

void MemoryDisplay::Forget(MemoryWindow& window)
{
    Forget_Window(window);
    std::erase_if(script_, [&](HostEvent const& event) { return event.window == &window; });
    if (pressed_ == &window) pressed_ = nullptr;
    if (framePress_ && framePress_->window == &window) framePress_.reset();
}

bool MemoryDisplay::Is_Script_Due() const
{
    return !script_.empty() && script_.front().milliseconds <= now_;
}

void MemoryDisplay::Play_Next()
{
    HostEvent event = std::move(script_.front());
    script_.pop_front();
    Play(std::move(event));
}

/// Plays the script up to now until an event comes out of it, so that each meets the windows as the event
/// before it has left them.
bool MemoryDisplay::Bring_In()
{
    while (!Is_Waiting() && Is_Script_Due())
        Play_Next();
    return Is_Waiting();
}

std::optional<HostEvent> MemoryDisplay::Next_Event(double seconds)
{
    uint64_t const end = now_ + static_cast<uint64_t>(std::llround(std::max(seconds, 0.0) * 1000));
    while (!Bring_In() && now_ < end)
        now_ = script_.empty() ? end : std::min(end, script_.front().milliseconds);
    return Take_Event();
}

bool MemoryDisplay::Has_Events()
{
    return Is_Waiting() || Is_Script_Due();
}

void MemoryDisplay::Flush_Input()
{
    // What the desktop makes of it happens all the same.
    while (Is_Script_Due())
        Play_Next();
    Flush_Events();
}

// ---- the script -------------------------------------------------------------------------------------------

uint64_t MemoryDisplay::Script_Time() const
{
    return std::max(now_, scriptTime_);
}

HostEvent MemoryDisplay::Scripted(HostEventType type) const
{
    Pen const pen = pen_.value_or(Pen{1.0, false});
    return {.type = type,
            .modifiers = held_,
            .x = scriptX_,
            .y = scriptY_,
            .pressure = pen.pressure,
            .isPen = pen_.has_value(),
            .isEraser = pen.isEraser};
}

void MemoryDisplay::Post(HostEvent event)
{
    if (event.milliseconds == 0) event.milliseconds = Script_Time();
    auto const later =
        std::upper_bound(script_.begin(), script_.end(), event.milliseconds,
                         [](uint64_t time, HostEvent const& other) { return time < other.milliseconds; });
    script_.insert(later, std::move(event));
}

void MemoryDisplay::Move(int x, int y)
{
    scriptX_ = x;
    scriptY_ = y;
    Post(Scripted(HostEventType::MouseMove));
}

void MemoryDisplay::Press(int x, int y, HostButton button)
{
    if (x != scriptX_ || y != scriptY_) Move(x, y);
    Press_Here(button);
}

void MemoryDisplay::Press_Here(HostButton button)
{
    HostEvent event = Scripted(HostEventType::MouseDown);
    event.button = button;
    Post(std::move(event));
}

void MemoryDisplay::Release(HostButton button)
{
    HostEvent event = Scripted(HostEventType::MouseUp);
    event.button = button;
    Post(std::move(event));
}

void MemoryDisplay::Click(int x, int y, HostButton button)
{
    Press(x, y, button);
    Release(button);
}

void MemoryDisplay::Wheel(double x, double y)
{
    HostEvent event = Scripted(HostEventType::Wheel);
    event.wheelX = x;
    event.wheelY = y;
    Post(std::move(event));
}

void MemoryDisplay::Key(HostKey key, char32_t character, int repeats)
{
    HostEvent event = Scripted(HostEventType::KeyDown);
    event.key = key;
    event.character = character;
    if (key == HostKey::Character && character != 0) event.text = Utf8_Of(character);
    Post(event);
    for (int i = 0; i < repeats; ++i) {
        Pause(i == 0 ? RepeatDelay : RepeatInterval);
        event.milliseconds = 0;
        event.isRepeat = true;
        Post(event);
    }
    event.type = HostEventType::KeyUp;
    event.milliseconds = 0;
    event.isRepeat = false;
    Post(std::move(event));
}

void MemoryDisplay::Type(std::string const& text)
{
    for (std::size_t place = 0; place < text.size();) {
        HostEvent event = Scripted(HostEventType::KeyDown);
        event.key = HostKey::Character;
        std::size_t const length = Read_Character(text, place, event.character);
        HostEvent up = event;
        up.type = HostEventType::KeyUp;
        event.text = text.substr(place, length);
        place += length;
        Post(std::move(event));
        Post(std::move(up));
    }
}

// ---- pictures ---------------------------------------------------------------------------------------------

static HostPicture Picture_Of(WindowPixels const& pixels)
{
    HostRect const all = pixels.Surface().Bounds();
    HostPicture picture{all.right, all.bottom, {}};
    for (int y = 0; y < all.bottom; ++y)
        picture.pixels.insert(picture.pixels.end(), pixels.Row(y), pixels.Row(y) + all.right);
    return picture;
}

HostPicture MemoryDisplay::Screenshot(HostWindow const& window) const
{
    return Picture_Of(static_cast<MemoryWindow const&>(window).Shown_Pixels());
}

HostPicture MemoryDisplay::Screenshot() const
{
    WindowPixels desk(screen_.Width(), screen_.Height());
    HostSurface& surface = desk.Surface();
    Draw_Ground(surface);
    for (Placed const& placed : Placed_Windows()) {
        auto const& window = static_cast<MemoryWindow const&>(*placed.window);
        HostRect const outer = Outer_Bounds(window), client = window.Client();
        if (outer != client)
            Draw_Frame(surface, {outer, client, window.Request(), &window == Front_Window()});
        surface.Blit(window.Shown(), window.Shown().Bounds(), client.left, client.top);
    }
    return Picture_Of(desk);
}
