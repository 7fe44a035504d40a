// Messages and questions to the user. The text is a printf format, given itself or by string id, of at most
// 2047 bytes when formatted. While no interface runs a message goes to standard error as one line, and a
// question is answered no. SetErrorModeZV silences both. Main thread only.
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

/// A long text under a heading. While no interface runs each of its lines is one on standard error.
ZV_API void UserScrollMessageZV(char const* heading, char* body);
ZV_API void UserScrollMessageZV(unsigned long id, char* body);

inline constexpr unsigned long ZV_ERRORMODE_YES = 1;  ///< show nothing, questions are answered yes
inline constexpr unsigned long ZV_ERRORMODE_NO = 2;  ///< show nothing, questions are answered no; wins over 1

/// Stores the error mode and returns the old one.
ZV_API unsigned long SetErrorModeZV(unsigned long mode);
