// The names of following files: the number in a name counted up or down.

#include "FileSpecText.h"
#include "SpecText.h"

#include "ZVMemory.h"

#include <algorithm>
#include <cstring>

namespace {

struct NumberedName {
    std::string_view prefix;  ///< what stands before the digits
    SpecText number;          ///< the digits, counted on
    std::string_view suffix;  ///< what follows from the delimiter on
};

bool Is_Digit(char c)
{
    return c >= '0' && c <= '9';
}

/// Adds one to a run of digits of any length; it grows when all are nines.
SpecText Count_Up(std::string_view digits)
{
    bool const grows = digits.find_first_not_of('9') == std::string_view::npos;
    SpecText number(grows ? "0" : "", digits);
    char* digit = number.Text() + number.Length();
    while (digit != number.Text() && *--digit == '9')
        *digit = '0';
    if (number.Fits()) ++*digit;
    return number;
}

/// Takes one from a run of digits, which keeps its width and stops at zero.
SpecText Count_Down(std::string_view digits)
{
    SpecText number(digits);
    if (digits.find_first_not_of('0') == std::string_view::npos) return number;
    char* digit = number.Text() + number.Length();
    while (digit != number.Text() && *--digit == '0')
        *digit = '9';
    if (number.Fits()) --*digit;
    return number;
}

/// Takes the name of a spec apart; the parts lie in the spec.
NumberedName Next_Name(char const* spec, char delimiter, ZVIncFileSpec direction)
{
    std::string_view const name = File_Name(spec);
    std::size_t const end = std::min(name.rfind(delimiter), name.size());
    std::size_t start = end;
    while (start > 0 && Is_Digit(name[start - 1]))
        --start;

    std::string_view const digits = name.substr(start, end - start);
    NumberedName next{name.substr(0, start), SpecText(), name.substr(end)};
    if (digits.empty())
        next.number.Append("0");
    else
        next.number = direction == ZVIncFileSpecDown ? Count_Down(digits) : Count_Up(digits);
    return next;
}

/// 0999 and its like: what counting down makes of a power of ten.
bool Is_Below_Power_Of_Ten(std::string_view number)
{
    return number.size() > 1 && number[0] == '0' &&
           number.find_first_not_of('9', 1) == std::string_view::npos;
}

bool File_Exists(char const* directory, std::string_view name)
{
    SpecText spec(directory ? directory : "");
    if (spec.Length() > 0 && !spec.View().ends_with('\\')) spec.Append("\\");
    return FileExistsZV(spec.Append(name).Text());
}

/// The name of which `name` is the wide form, or that form when it is the one that is there.
SpecText Narrowed_Name(std::string_view name, std::string_view number, char const* directory,
                       std::string_view prefix, std::string_view suffix)
{
    SpecText const wide(name, suffix.empty() ? ".mqd" : "");
    if (File_Exists(directory, wide.View())) return wide;
    return SpecText(prefix, number.substr(1)).Append(suffix);
}

bool Is_Narrowed(ZVIncFileSpec direction, std::string_view number)
{
    return direction == ZVIncFileSpecDown && Is_Below_Power_Of_Ten(number);
}

}  // namespace

char* GetFileSpecNextNumber(char const* spec, char delimiter, ZVIncFileSpec direction, char* number,
                            char* prefix, char* suffix)
{
    if (!spec || !number || !prefix || !suffix) return nullptr;
    NumberedName const next = Next_Name(spec, delimiter, direction);
    bool const fits = Copy_Spec_Text(prefix, next.prefix) && Copy_Spec_Text(suffix, next.suffix);
    if (fits && next.number.Fits()) {
        Copy_Spec_Text(number, next.number.View());
        return suffix;
    }
    SetError(ZV_ERR_NOT_FOUND);
    return nullptr;
}

void ValidateFilenameNumber(char* name, ZVIncFileSpec direction, char const* number, char const* directory,
                            char const* prefix, char const* suffix)
{
    if (!name || !number || !prefix || !suffix || !Is_Narrowed(direction, number)) return;
    Copy_Spec_Text(name, Narrowed_Name(name, number, directory, prefix, suffix).View());
}

char* ManageIncrementFileSpecZV(char const* spec, char delimiter, ZVIncFileSpec direction,
                                char const* directory)
{
    if (!spec) return nullptr;
    NumberedName const next = Next_Name(spec, delimiter, direction);
    SpecText name = SpecText(next.prefix, next.number.View()).Append(next.suffix);
    if (Is_Narrowed(direction, next.number.View()))
        name = Narrowed_Name(name.View(), next.number.View(), directory, next.prefix, next.suffix);
    if (name.Fits() && next.number.Fits()) return MakeFileSpecZV(name.Text());
    SetError(ZV_ERR_NOT_FOUND);
    return nullptr;
}
