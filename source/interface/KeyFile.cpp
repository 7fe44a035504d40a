// Key files: lines of text become triples of key, action and parameter. All tables of a file lie behind one
// another in one block, each ended by a triple of zeros.
#include "KeyFile.h"

#include "Locale/ZVLibStr.h"
#include "ZVLibInternal.h"
#include "files/SpecText.h"
#include "foundation/HeapBlock.h"

#include <algorithm>
#include <charconv>
#include <strings.h>

namespace {

/// The word by which a conditional of a key file means this platform.
constexpr std::string_view platformWord = "Linux";

constexpr std::string_view blanks = " \t";

bool Are_Same(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

bool Begins_With(std::string_view text, std::string_view start)
{
    return Are_Same(text.substr(0, start.size()), start);
}

/// Takes the first line off a text, without its end: CR, LF, or both.
std::string_view Take_Line(std::string_view& rest)
{
    std::size_t const length = std::min(rest.find_first_of("\r\n"), rest.size());
    std::string_view const line = rest.substr(0, length);
    rest.remove_prefix(length);
    rest.remove_prefix(rest.starts_with("\r\n") ? 2 : rest.empty() ? 0 : 1);
    return line;
}

/// Takes the first token off a line; an empty one at its end.
std::string_view Take_Token(std::string_view& line)
{
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    std::string_view const token = line.substr(0, line.find_first_of(blanks));
    line.remove_prefix(token.size());
    return token;
}

/// Lines that say something.
bool Counts(std::string_view line)
{
    std::string_view const token = Take_Token(line);
    return !token.empty() && !token.starts_with("//");
}

std::size_t Count_Lines(std::string_view text)
{
    std::size_t count = 0;
    while (!text.empty())
        count += Counts(Take_Line(text));
    return count;
}

uint32_t Modifier_Of(std::string_view word)
{
    struct Modifier {
        std::string_view name;
        uint32_t bit;
    };
    static constexpr Modifier modifiers[] = {{"COMMAND", ZV_MOD_COMMAND},
                                             {"ALT", ZV_MOD_ALT},
                                             {"OPTION", ZV_MOD_ALT},
                                             {"CONTROL", ZV_MOD_CONTROL},
                                             {"SHIFT", ZV_MOD_SHIFT}};
    for (Modifier const& modifier : modifiers)
        if (Are_Same(word, modifier.name)) return modifier.bit;
    return 0;
}

/// The code of a key by its name, with shift for an upper-case letter; 0 for an unknown name.
uint32_t Key_Of(std::string_view name)
{
    static constexpr std::string_view names[] = {
        "F1",         "F2",      "F3",        "F4",       "F5",     "F6",        "F7",       "F8",
        "F9",         "F10",     "F11",       "F12",      "F13",    "F14",       "F15",      "LEFTARROW",
        "RIGHTARROW", "UPARROW", "DOWNARROW", "HELP",     "DELETE", "BACKSPACE", "ENTER",    "HOME",
        "END",        "TAB",     "PAGEUP",    "PAGEDOWN", "ESC",    "RETURN",    "CAPSLOCK", "INSERT"};
    if (name.size() == 1) {
        auto const c = static_cast<unsigned char>(name[0]);
        return c >= 'A' && c <= 'Z' ? (c - 'A' + 'a') | uint32_t{ZV_MOD_SHIFT} : c;
    }
    if (Are_Same(name, "space")) return ' ';
    auto const found = std::ranges::find_if(names, [&](auto other) { return Are_Same(name, other); });
    return found == std::end(names) ? 0 : ZV_KEY_F1 + static_cast<uint32_t>(found - names);
}

/// The number of an action by its name; 0 for an unknown one.
uint32_t Action_Of_Name(ZVKeySection const& section, std::string_view name)
{
    if (section.commands) {
        for (ZVKeyCommand const* command = section.commands; command->name; ++command)
            if (Are_Same(name, command->name)) return command->action;
    } else if (section.commandIds) {
        for (ZVKeyCommandId const* command = section.commandIds; command->nameId; ++command)
            if (Are_Same(name, GetStringZV(command->nameId))) return command->action;
    }
    return 0;
}

/// A decimal number; 0 where there is none that fits.
uint16_t Parameter_Of(std::string_view word)
{
    int value = 0;
    auto const [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    return error == std::errc() ? static_cast<uint16_t>(value) : uint16_t{0};
}

char const* Name_Of(ZVKeySection const& section)
{
    return section.name ? section.name : GetStringZV(section.nameId);
}

/// A token as the text of a message.
char const* As_Text(std::string_view token)
{
    std::size_t const length = token.copy(ZVEnv->scratch1, sizeof ZVEnv->scratch1 - 1);
    ZVEnv->scratch1[length] = 0;
    return ZVEnv->scratch1;
}

class KeyFileReader {
public:
    KeyFileReader(ZVKeySection* chain, unsigned short* firstFree) : chain_(chain), next_(firstFree) {}

    void Read(std::string_view text)
    {
        while (!text.empty()) {
            ++lineNumber_;
            std::string_view const line = Take_Line(text);
            if (Counts(line)) Read_Line(line);
        }
    }

private:
    void Read_Line(std::string_view line)
    {
        std::string_view rest = line;
        std::string_view const first = Take_Token(rest);
        if (Begins_With(first, "if")) {
            isSkipping_ = !Begins_With(Take_Token(rest), platformWord);
        } else if (Are_Same(first, "else")) {
            isSkipping_ = !isSkipping_;
        } else if (Are_Same(first, "endif")) {
            isSkipping_ = false;
        } else if (isSkipping_) {
            return;
        } else if (Are_Same(first, "Section")) {
            Begin_Section(Take_Token(rest));
        } else if (section_) {
            Read_Binding(line);
        }
    }

    void Begin_Section(std::string_view name)
    {
        next_ += BindingSize;  // zeros, which end the table before
        isFilling_ = false;
        for (section_ = chain_; section_; section_ = section_->next)
            if (Are_Same(name, Name_Of(*section_))) break;
        if (!section_) return;
        if (section_->bindings) {
            UserMessageZV(ZVSTR_KEY_SECTION_USED, As_Text(name), lineNumber_);
            return;
        }
        section_->bindings = next_;
        isFilling_ = true;
    }

    void Read_Binding(std::string_view line)
    {
        uint32_t modifiers = 0;
        std::string_view token = Take_Token(line);
        while (uint32_t const modifier = Modifier_Of(token)) {
            modifiers |= modifier;
            token = Take_Token(line);
        }
        if (token.empty()) return;

        uint32_t const code = Key_Of(token);
        auto const key = static_cast<uint16_t>(code ? code | modifiers : 0);
        if (!key) {
            UserMessageZV(ZVSTR_KEY_UNKNOWN, lineNumber_);
        } else if (Is_Bound(key)) {
            UserMessageZV(ZVSTR_KEY_USED, As_Text(token), lineNumber_);
            return;
        }
        uint32_t const action = Action_Of_Name(*section_, Take_Token(line));
        if (!action) UserMessageZV(ZVSTR_KEY_UNKNOWN, lineNumber_);
        // A table ends with a key of 0, so one that nobody knows stays out of it. A section that had its
        // table before keeps that as it was.
        if (!key || !isFilling_) return;
        next_[BoundKey] = key;
        next_[BoundAction] = static_cast<uint16_t>(action);
        next_[BoundParameter] = Parameter_Of(Take_Token(line));
        next_ += BindingSize;
    }

    bool Is_Bound(uint16_t key) const
    {
        for (unsigned short const* binding = section_->bindings; binding[BoundKey]; binding += BindingSize)
            if (binding[BoundKey] == key) return true;
        return false;
    }

    ZVKeySection* chain_;
    unsigned short* next_;             ///< zeros from here on
    ZVKeySection* section_ = nullptr;  ///< that the lines belong to, or null
    bool isFilling_ = false;           ///< the section's table is this file's and the last one so far
    bool isSkipping_ = false;
    int lineNumber_ = 0;
};

/// The file in memory; null when it cannot be opened or read, of size 0 when there is nothing in it.
struct FileText {
    HeapBlock<char> bytes;
    std::size_t size = 0;
    bool isRead = false;
};

FileText Read_Whole_File(char const* spec)
{
    FileText text;
    ZVFileInfo* const file = spec ? OpenFileZV(spec, ZVFilePermRead, ZVFileFlags{}) : nullptr;
    if (!file) return text;
    int64_t const length = GetFileLengthZV(file);
    if (length >= 0) {
        text.size = static_cast<std::size_t>(length);
        text.bytes.reset(static_cast<char*>(Alloc_Aligned(text.size + 1, 1)));
        text.isRead = text.bytes && (text.size == 0 || ReadFileZV(file, text.bytes.get(), text.size));
    }
    CloseFileZV(file);
    return text;
}

}  // namespace

void Parse_Key_Text(std::string_view text, ZVKeySection* chain)
{
    std::size_t const lines = Count_Lines(text);
    ZVKeySection* owner = chain;
    while (owner && owner->block)
        owner = owner->next;
    if (lines == 0 || !owner) return;

    // A line takes a triple at most; what is behind them ends the last table.
    std::size_t const count = (lines + 5) * BindingSize;
    std::size_t const size = count * sizeof(unsigned short);
    auto* const block = static_cast<unsigned short*>(Alloc_Aligned(size, alignof(unsigned short)));
    if (!block) return;
    std::fill_n(block, count, static_cast<unsigned short>(0));
    owner->block = block;
    KeyFileReader(chain, block).Read(text);
}

void Parse_KeyFile(char const* spec, ZVKeySection* section)
{
    FileText const text = Read_Whole_File(spec);
    if (!text.isRead)
        UserMessageZV(ZVSTR_KEY_FILE);
    else if (section)
        Parse_Key_Text({text.bytes.get(), text.size}, section);
}

void Parse_Home_KeyFile(char const* name, ZVKeySection* section)
{
    if (!name || !ZVEnv) return;
    SpecText const spec(ZVEnv->homeDir ? ZVEnv->homeDir : "", name);
    Parse_KeyFile(spec.Text(), section);
}

void SetKeyFileZV(char const* name, ZVKeySection* section)
{
    CleanupKeySectionZV(section);
    Parse_Home_KeyFile(name, section);
}

void CleanupKeySectionZV(ZVKeySection* section)
{
    for (; section; section = section->next) {
        FreeMemZV(section->block);
        section->block = nullptr;
        section->bindings = nullptr;
    }
}
