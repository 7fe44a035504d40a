// The calls that ask for files and directories.
#include "FileDialog.h"

#include "FileDialogText.h"

#include "Locale/ZVLibStr.h"

#include <new>
#include <string>

namespace {

/// Where the last dialog ended, for those that are told no place.
std::string& Last_Directory()
{
    static std::string directory;
    return directory;
}

/// False, with an error number and text that tell so, while no dialog can be shown.
bool Can_Ask()
{
    if (ZVEnv && Mac_Is_Interface_Thread()) return true;
    SetError(ZV_ERR_MEMORY);
    SetErrorString(GetStringZV(ZVSTR_DIALOG_NO_INTERFACE));
    return false;
}

/// What the tags ask for.
struct Asked {
    FileQuestion question;
    char* directory = nullptr;  ///< the caller's buffer
};

void Take_Tag(Asked& asked, TagItem const& tag)
{
    auto const text = [&tag] { return tag.data ? reinterpret_cast<char const*>(tag.data) : ""; };
    ZVFileRequest& kinds = asked.question.kinds;
    switch (tag.tag) {
    case ZV_ASK_DIRECTORY: asked.directory = reinterpret_cast<char*>(tag.data); break;
    case ZV_ASK_FILE_NAME: asked.question.name = text(); break;
    case ZV_ASK_SAVE:
        asked.question.mode = FileDialogMode::Save;
        kinds.Flags |= ZV_FILEREQF_SAVE;
        break;
    case ZV_ASK_TITLE: asked.question.title = text(); break;
    case ZV_ASK_FILE_TYPES: kinds.Types = reinterpret_cast<ZVFileTypeDescriptor*>(tag.data); break;
    case ZV_ASK_FORMATS:
    case ZV_ASK_FORMATS_2: kinds.Flags |= ZV_FILEREQF_FORMATS; break;
    case ZV_ASK_FORMAT_RESULT: kinds.FormatResult = reinterpret_cast<ZVFormatDesc**>(tag.data); break;
    case ZV_ASK_TYPE_RESULT: kinds.TypeResult = reinterpret_cast<ZVFileTypeDescriptor**>(tag.data); break;
    default: break;
    }
}

void Find_Start(Asked& asked)
{
    std::string start = asked.directory ? Existing_Directory(asked.directory) : std::string();
    if (start.empty()) start = Existing_Directory(Last_Directory());
    asked.question.start = start.empty() ? FilePlaces::Home() : start;
}

/// Shows the dialog. Its answer, or an empty text, as the error number tells, for a dialog that was cancelled
/// or could not be shown.
std::string Ask(FileQuestion& question)
{
    FileDialog dialog(question);
    EnterThirdPartyModalDialogZV();
    bool const isShown = dialog.Run();
    ExitThirdPartyModalDialogZV();
    if (!isShown || dialog.Answer().empty()) return {};
    SetError(ZV_ERR_NONE);
    FSSpec place;
    char spec[ZV_SPEC_SIZE];
    std::string const& answer = dialog.Answer();
    bool const isPlace = GetFSSpecZV(answer.c_str(), &place) == 0 && GetDOSPathZV(spec, &place) == 0;
    std::string const chosen = isPlace ? spec : answer;
    if (GetPathZV(chosen.c_str(), spec)) Last_Directory() = spec;
    return chosen;
}

char* Spec_Of(std::string const& text)
{
    return text.empty() ? nullptr : MakeFileSpecZV(text.c_str());
}

}  // namespace

char* NavServices_AskFileName(TagItem* tags)
{
    if (!Can_Ask()) return nullptr;
    try {
        Asked asked;
        while (TagItem const* tag = NextTagItem(&tags))
            Take_Tag(asked, *tag);
        Find_Start(asked);
        Start_File_Request(&asked.question.kinds);
        std::string const chosen = Ask(asked.question);
        if (!chosen.empty() && asked.directory) GetPathZV(chosen.c_str(), asked.directory);
        return Spec_Of(chosen);
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
}

char* NavServices_AskDirectory(TagItem* tags)
{
    if (!Can_Ask()) return nullptr;
    try {
        Asked asked;
        while (TagItem const* tag = NextTagItem(&tags))
            if (tag->tag == ZV_ASK_DIRECTORY || tag->tag == ZV_ASK_TITLE) Take_Tag(asked, *tag);
        Find_Start(asked);
        asked.question.mode = FileDialogMode::Directory;
        return Spec_Of(Ask(asked.question));
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
}

char* AskFileNameZV(TagItem* tags)
{
    return NavServices_AskFileName(tags);
}

char* AskDirectoryZV(TagItem* tags)
{
    return NavServices_AskDirectory(tags);
}
