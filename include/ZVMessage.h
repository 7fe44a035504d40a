// Messages and questions to the user. The text is a printf format, given itself or by string id, of at most
// 2047 bytes when formatted. A requester shows it, a modal dialog that can be opened from anywhere: in
// callbacks, in the middle of a declaration, from inside another requester. What the caller had as current
// palette, under construction, as error number and as busy cursor is the same afterwards. Each end of a line,
// CR or LF, begins a line of the requester. Lines too wide for it are broken at blanks, and of more lines
// than the screen has room for the last one that fits is "...".
//
// Escape and "c" answer with the second button, Return, Enter and "o" with the first. SetErrorModeZV keeps
// requesters away. While no interface runs, during the start of InitZV, on other threads than that of the
// interface, and when a requester cannot be had, a message goes to standard error as one line; a question is
// then answered no. The calls belong to the main thread. Under ZV_HOST=headless a requester waits for
// scripted input like any other dialog, so a server sets an error mode.
#pragma once

#include "ZVBase.h"

/// A message with one button; returns when the user has seen it.
ZV_API void UserMessageZV(char const* format, ...) __attribute__((format(printf, 1, 2)));
ZV_API void UserMessageZV(unsigned long id, ...);

/// The same for messages that end something.
ZV_API void StopAlertZV(char const* format, ...) __attribute__((format(printf, 1, 2)));
ZV_API void StopAlertZV(unsigned long id, ...);

/// A question with the buttons of strings 100 and 101.
/// @return  1 for the first button, 0 for the second
ZV_API long AskUserZV(char const* format, ...) __attribute__((format(printf, 1, 2)));
ZV_API long AskUserZV(unsigned long id, ...);

/// A question with the caller's buttons; a null text takes the default of string 100 or 101.
ZV_API long AskUser2ZV(char const* first, char const* second, char const* format, ...)
    __attribute__((format(printf, 3, 4)));
ZV_API long AskUser2ZV(unsigned long first, unsigned long second, unsigned long format, ...);

/// A long text in a scrolling box under a heading. On standard error each of its lines is one.
ZV_API void UserScrollMessageZV(char const* heading, char* body);
ZV_API void UserScrollMessageZV(unsigned long id, char* body);

inline constexpr unsigned long ZV_ERRORMODE_YES = 1;  ///< show nothing, questions are answered yes
inline constexpr unsigned long ZV_ERRORMODE_NO = 2;  ///< show nothing, questions are answered no; wins over 1

/// Stores the error mode and returns the old one.
ZV_API unsigned long SetErrorModeZV(unsigned long mode);
