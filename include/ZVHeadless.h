// The interface in memory, for an application's own tests and for servers: with ZV_HOST=headless in the
// process's environment InitZV opens a desktop of one monitor that nobody sees, 1600 by 1200 or what
// ZV_HEADLESS_SIZE tells, such as 1280x1024. Its clock moves on only while the library waits for events, so a
// test of minutes takes no time and comes out the same every time. Windows have a frame of 1 pixel with a
// title bar of 22.
//
//     setenv("ZV_HOST", "headless", 1);
//     InitZV(OnEvent, nullptr, nullptr, nullptr, nullptr);
//     ShowMyPalette();
//     HeadlessClickZV(120, 80, ZV_HEADLESS_LEFT);
//     HeadlessTypeZV("Untitled");
//     HeadlessRunZV(0);
//     HeadlessScreenshotZV(nullptr, "desk.png");
//
// Input is scripted: calls put events behind one another, and the event loop meets them as it would a user's.
// Without the headless desktop calls do nothing and return 0. Main thread only.
#pragma once

#include "ZVBase.h"
#include "ZVBitmap.h"
#include "ZVRect.h"

enum ZVHeadlessButton : unsigned long { ZV_HEADLESS_LEFT = 0, ZV_HEADLESS_MIDDLE = 1, ZV_HEADLESS_RIGHT = 2 };

/// 1 when the interface runs in memory.
ZV_API long IsHeadlessZV();

/// Handles events until all that was scripted has been met and nothing waits, and then for so many
/// milliseconds of the clock. Ends early when ExitZV is called.
/// @return  1, and 0 once ExitZV was called
ZV_API long HeadlessRunZV(unsigned long milliseconds);

// ---- the script -------------------------------------------------------------------------------------------

/// The pointer, on the screen. Presses and releases are where it has got by then.
ZV_API void HeadlessMoveZV(long x, long y);
ZV_API void HeadlessPressZV(unsigned long button);
ZV_API void HeadlessReleaseZV(unsigned long button);
ZV_API void HeadlessClickZV(long x, long y, unsigned long button);

/// Notches of the wheel: to the right, and away from the user.
ZV_API void HeadlessWheelZV(double right, double up);

/// A pen in place of the mouse in all that follows, so hard on the tablet (0.0 to 1.0) with its point, or
/// with its eraser end. A pressure below 0 takes the mouse again.
ZV_API void HeadlessPenZV(double pressure, long isEraser);

/// A key down and up, by its code in key events (ZVKeyCode, or the lower-case character), and a text as it is
/// typed. What has a character comes as a key and as a text.
ZV_API void HeadlessKeyZV(unsigned long code);
ZV_API void HeadlessTypeZV(char const* utf8);

/// A key that is held until it has repeated so often: for the first time after half a second, then every 30
/// milliseconds. What follows comes later by that time.
ZV_API void HeadlessRepeatKeyZV(unsigned long code, long repeats);

/// What an input method shows while it composes, with the characters ahead of its caret. A null or empty text
/// gives it up; HeadlessCommitZV hands the finished text over.
ZV_API void HeadlessComposeZV(char const* utf8, long caret);
ZV_API void HeadlessCommitZV(char const* utf8);

/// Modifier keys (ZV_MOD_SHIFT, CONTROL, ALT, COMMAND, CAPS_LOCK) that are held with all that follows.
ZV_API void HeadlessHoldZV(unsigned long modifiers);

/// What follows comes so much later.
ZV_API void HeadlessPauseZV(unsigned long milliseconds);

/// The desktop hands over a file, by its native path, and asks the application to quit.
ZV_API void HeadlessOpenFileZV(char const* path);
ZV_API void HeadlessQuitZV();

/// Another application comes to the front, or this one again.
ZV_API void HeadlessLeaveZV();
ZV_API void HeadlessReturnZV();

// ---- the user at a window's frame, at once ----------------------------------------------------------------

ZV_API void HeadlessCloseBoxZV(ZVWindow* window);
ZV_API void HeadlessZoomBoxZV(ZVWindow* window);

/// Gives the client area a place and a size, within the window's limits, as a drag of the frame does.
ZV_API void HeadlessDragFrameZV(ZVWindow* window, ZVRectT<long> const* client);

// ---- what is seen and heard -------------------------------------------------------------------------------

/// What a window's client area shows, or the whole desktop for null, as a PNG file written over whatever was
/// there. 0 with an error number when it cannot be written.
ZV_API long HeadlessScreenshotZV(ZVWindow* window, char const* path);

/// The same as a new bitmap of type ZV_BITMAP_RGBA8, to be released by FreeBitmapZV. Null without memory.
ZV_API ZVBitmap* HeadlessPictureZV(ZVWindow* window);

/// The text of the clipboard, valid until the next call; a text replaces it.
ZV_API char const* HeadlessClipboardZV();
ZV_API void HeadlessSetClipboardZV(char const* utf8);

/// The cursor that shows, as a ZVCursor. ZV_CURSOR_BUSY is each frame of the busy cursor, ZV_CURSOR_NONE a
/// hidden pointer; ZV_CURSOR_SLIDE looks like ZV_CURSOR_SPLIT_ACROSS, which stands for both.
ZV_API unsigned long HeadlessCursorZV();

ZV_API long HeadlessBeepsZV();                  ///< Beeps since the start.
ZV_API unsigned long HeadlessMillisecondsZV();  ///< The clock.
