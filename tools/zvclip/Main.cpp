// zvclip: reads, converts, composites and checks clips from the command line.
#include "Commands.h"
#include "Output.h"

#include <ZVLib.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

char const* const generalHelp =
    "Usage: zvclip COMMAND ...\n"
    "\n"
    "  zvclip info FILE...                         what the files are\n"
    "  zvclip convert IN OUT                       one clip to another format\n"
    "  zvclip composite FOREGROUND BACKGROUND OUT  a clip over a clip or a colour\n"
    "  zvclip extract IN OUT --id N                one object of a deep picture, by its id\n"
    "  zvclip frame IN --time T OUT.png            one frame as a picture\n"
    "  zvclip sound IN OUT.wav                     the sound as a WAVE file\n"
    "  zvclip check FILE...                        whether every frame can be read\n"
    "\n"
    "A file is a movie, a picture, or a series of pictures: shot[####].vpb stands for shot0000.vpb and on.\n"
    "\n"
    "'zvclip COMMAND --help' tells the options of a command. The exit status is 0, 1 for a\n"
    "failed job, 2 for wrong usage.\n";

struct Command {
    char const* name;
    int (*run)(int, char**);
    char const* const& help;
    bool writesClips;
};

Command const commands[] = {
    {"info", Run_Info, infoHelp, false},
    {"convert", Run_Convert, convertHelp, true},
    {"composite", Run_Composite, compositeHelp, true},
    {"extract", Run_Extract, extractHelp, true},
    {"frame", Run_Frame, frameHelp, false},
    {"sound", Run_Sound, soundHelp, false},
    {"check", Run_Check, checkHelp, false},
};

/// The library, up for as long as a command runs.
struct Library {
    Library()
    {
        if (!InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 1, 0))
            throw std::runtime_error("the library does not start");
        InitFormatModulesZV(nullptr);
    }
    ~Library() { CleanUpZV(); }
    Library(Library const&) = delete;
    Library& operator=(Library const&) = delete;
};

bool Wants_Help(int argc, char** argv)
{
    for (int i = 1; i < argc && std::strcmp(argv[i], "--") != 0; ++i)
        if (std::strcmp(argv[i], "--help") == 0) return true;
    return false;
}

int Run_Command(Command const& command, int argc, char** argv)
{
    if (Wants_Help(argc, argv)) {
        std::fputs(command.help, stdout);
        if (command.writesClips) std::printf("\nThe file OUT:\n%s", outputHelp);
        return 0;
    }
    try {
        Watch_For_Signals();
        Library const library;
        return command.run(argc, argv);
    } catch (UsageError const& error) {
        std::fprintf(stderr, "zvclip %s: %s; see 'zvclip %s --help'\n", command.name, error.what(),
                     command.name);
        return 2;
    } catch (Interrupted const&) {
        End_By_Signal();
    } catch (ZVAssertFail const&) {
        return 1;  // its message was shown
    } catch (std::exception const& error) {
        std::fprintf(stderr, "zvclip: %s\n", error.what());
        return 1;
    }
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fputs(generalHelp, stderr);
        return 2;
    }
    std::string const name = argv[1];
    if (name == "--help" || name == "help") {
        std::fputs(generalHelp, stdout);
        return 0;
    }
    for (Command const& command : commands)
        if (name == command.name) return Run_Command(command, argc - 1, argv + 1);
    std::fprintf(stderr, "zvclip: there is no command '%s'; see 'zvclip --help'\n", name.c_str());
    return 2;
}
