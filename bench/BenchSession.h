// What measurements need that work with files.
#pragma once

#include <ZVLib.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace Bench {

/// A library without interface and a directory, for as long as a measurement runs.
class Session {
public:
    Session()
    {
        std::string pattern = std::filesystem::temp_directory_path() / "zvbench.XXXXXX";
        if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary directory");
        directory_ = pattern;
        setenv("KL_APP_DATA_DIR", directory_.c_str(), 1);
        if (!InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 1, 0))
            throw std::runtime_error("InitZV");
        InitFormatModulesZV(nullptr);
    }
    ~Session()
    {
        CleanUpZV();
        std::filesystem::remove_all(directory_);
    }
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    std::string Path(std::string const& name) const { return directory_ + "/" + name; }
    std::string Spec(std::string const& name) const
    {
        std::string spec = Path(name);
        std::replace(spec.begin(), spec.end(), '/', '\\');
        return "Root:" + spec;
    }

private:
    std::string directory_;
};

}  // namespace Bench
