// The names of following files: the number in a name counted up or down.

#include "FileSpecText.h"

#include "ZVMemory.h"

#include <cstring>
#include <string>

namespace {

struct NumberedName {
    std::string prefix;  ///< what stands before the digits
    std::string number;  ///< the digits, counted on
    std::string suffix;  ///< what follows from the delimiter on
};

bool Is_Digit(char c)
{
    return c >= '0' && c <= '9';
}

/// Adds one to a run of digits of any length; it grows when all are nines.
void Count_Up(std::string& digits)
{
    for (std::size_t i = digits.size(); i-- > 0;) {
        if (digits[i] != '9') {
            ++digits[i];
            return;
        }
        digits[i] = '0';
    }
    digits.insert(digits.begin(), '1');
}

/// Takes one from a run of digits, which keeps its width and stops at zero.
void Count_Down(std::string& digits)
{
    if (digits.find_first_not_of('0') == std::string::npos) return;
    for (std::size_t i = digits.size(); i-- > 0;) {
        if (digits[i] != '0') {
            --digits[i];
            return;
        }
        digits[i] = '9';
    }
}

NumberedName Next_Name(char const* spec, char delimiter, ZVIncFileSpec direction)
{
    std::string const name = File_Name(spec);
    std::size_t const end = std::min(name.rfind(delimiter), name.size());
    std::size_t start = end;
    while (start > 0 && Is_Digit(name[start - 1]))
        --start;

    NumberedName next{name.substr(0, start), name.substr(start, end - start), name.substr(end)};
    if (next.number.empty())
        next.number.push_back('0');
    else if (direction == ZVIncFileSpecDown)
        Count_Down(next.number);
    else
        Count_Up(next.number);
    return next;
}

/// 0999 and its like: what counting down makes of a power of ten.
bool Is_Below_Power_Of_Ten(char const* number)
{
    return number[0] == '0' && number[1] != 0 && number[1 + std::strspn(number + 1, "9")] == 0;
}

bool File_Exists(char const* directory, char const* name)
{
    std::string spec = directory ? directory : "";
    if (!spec.empty() && !spec.ends_with('\\')) spec += '\\';
    return FileExistsZV((spec + name).c_str());
}

}  // namespace

char* GetFileSpecNextNumber(char const* spec, char delimiter, ZVIncFileSpec direction, char* number,
                            char* prefix, char* suffix)
{
    if (!spec || !number || !prefix || !suffix) return nullptr;
    NumberedName const next = Next_Name(spec, delimiter, direction);
    bool const fits = Copy_Spec_Text(number, next.number) && Copy_Spec_Text(prefix, next.prefix) &&
                      Copy_Spec_Text(suffix, next.suffix);
    return fits ? suffix : nullptr;
}

void ValidateFilenameNumber(char* name, ZVIncFileSpec direction, char const* number, char const* directory,
                            char const* prefix, char const* suffix)
{
    if (!name || !number || !prefix || !suffix) return;
    if (direction != ZVIncFileSpecDown || !Is_Below_Power_Of_Ten(number)) return;
    std::string candidate = name;
    if (!*suffix) candidate += ".mqd";
    if (!File_Exists(directory, candidate.c_str()))
        candidate.assign(prefix).append(number + 1).append(suffix);
    Copy_Spec_Text(name, candidate);
}

char* ManageIncrementFileSpecZV(char const* spec, char delimiter, ZVIncFileSpec direction,
                                char const* directory)
{
    if (!spec) return nullptr;
    NumberedName const next = Next_Name(spec, delimiter, direction);
    char name[ZV_SPEC_SIZE];
    if (!Copy_Spec_Text(name, next.prefix + next.number + next.suffix)) return nullptr;
    ValidateFilenameNumber(name, direction, next.number.c_str(), directory, next.prefix.c_str(),
                           next.suffix.c_str());
    return MakeFileSpecZV(name);
}
