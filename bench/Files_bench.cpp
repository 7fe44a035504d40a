// A tree of 100,000 files, walked beside `find`, which looks at no file: names and kinds stand in the
// directories. EnumFilesZV tells types as well, for which each file has to be asked.
#include "BenchSession.h"
#include "BenchTools.h"

#include <fstream>
#include <memory>

namespace {

constexpr int directories = 1000, filesEach = 100;

/// The tree, in a session.
struct Tree {
    Bench::Session session;

    Tree()
    {
        for (int i = 0; i < directories; ++i) {
            std::string const directory = session.Path("tree/" + std::to_string(i));
            std::filesystem::create_directories(directory);
            for (int k = 0; k < filesEach; ++k)
                std::ofstream(directory + "/shot" + std::to_string(k) + ".png");
        }
    }

    void Find() const
    {
        std::string const command = "find " + session.Path("tree") + " -type f >/dev/null";
        if (std::system(command.c_str()) != 0) throw std::runtime_error("find");
    }
};

long Pass_By(char const* /*spec*/, unsigned long /*type*/, long /*data*/, long* /*stop*/)
{
    return 1;
}

void Enumerate(Tree const& tree)
{
    std::string const spec = tree.session.Spec("tree");
    char const* const roots[] = {spec.c_str(), nullptr};
    EnumFilesZV(roots, nullptr, Pass_By, 0, 1, 0);
}

/// A search that passes over all names: a walk that asks for no types.
void Search(Tree const& tree)
{
    ZVSearchCriteria criteria;
    tree.session.Spec("tree").copy(criteria.Directory, sizeof criteria.Directory - 1);
    criteria.Pattern[0] = '?';
    criteria.Recursive = 1;
    ZVFileFind* const find = InitFileFindZV(&criteria);
    FreeFileSpecZV(FindNextFileZV(&criteria, find, nullptr, nullptr));
    EndFileFindZV(find);
}

void Register(char const* name, void (*work)(Tree const&))
{
    auto const make = [work] {
        auto const tree = std::make_shared<Tree>();
        return std::pair([=] { work(*tree); }, [=] { tree->Find(); });
    };
    Bench::Register(name, 1.0, make, 9);
}

[[maybe_unused]] bool const isRegistered = [] {
    Register("files/enumerate_100000", Enumerate);
    Register("files/search_100000", Search);
    return true;
}();

}  // namespace
