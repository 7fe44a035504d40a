// A running library without interface, with a directory of its own for what a test writes. The user data goes
// there too, and all of it is gone afterwards.
#pragma once

#include <ZVLibInternal.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <string_view>

/// A new directory below the system's temporary one, removed with all in it.
class ScratchDir {
public:
    ScratchDir()
    {
        std::string pattern = std::filesystem::temp_directory_path() / "zvtest.XXXXXX";
        if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary directory");
        directory_ = pattern;
    }
    ~ScratchDir()
    {
        std::error_code ignored;
        std::filesystem::remove_all(directory_, ignored);
    }
    ScratchDir(ScratchDir const&) = delete;
    ScratchDir& operator=(ScratchDir const&) = delete;

    /// Native path of a file in the directory; of the directory itself without a name.
    std::string Path(std::string const& name = "") const { return directory_ + "/" + name; }

    /// The same as a file spec.
    std::string Spec(std::string const& name = "") const
    {
        std::string spec = Path(name);
        std::replace(spec.begin(), spec.end(), '/', '\\');
        return "Root:" + spec;
    }

    void Make_Directory(std::string const& name) const { std::filesystem::create_directories(Path(name)); }

    /// Writes a file of that name, in a directory that is made for it, and returns its spec.
    std::string Write(std::string const& name, std::string_view bytes) const
    {
        std::filesystem::path const path = Path(name);
        std::filesystem::create_directories(path.parent_path());
        std::ofstream file(path, std::ios::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
        return Spec(name);
    }

private:
    std::string directory_;
};

class TestEnvironment : public ScratchDir {
public:
    enum class Home { Program, Directory };

    /// The home directory is worked out from the program, or is the test's own directory.
    explicit TestEnvironment(Home home = Home::Program) { Start(home == Home::Directory ? Path() : ""); }

    /// The home directory is that path or spec.
    explicit TestEnvironment(char const* homeDir) { Start(homeDir); }

    ~TestEnvironment()
    {
        CleanUpZV();
        unsetenv("KL_APP_DATA_DIR");
    }

private:
    void Start(std::string const& homeDir)
    {
        setenv("KL_APP_DATA_DIR", Path().c_str(), 1);
        if (InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 1, ZV_INIT_HOME_DIR, homeDir.c_str(),
                   0))
            return;
        unsetenv("KL_APP_DATA_DIR");
        char const* const reason = GetErrorStringZV();
        throw std::runtime_error(reason ? reason : "InitZV failed");
    }
};

/// Base of fixtures that need nothing more than that.
class EnvironmentTest : public testing::Test {
protected:
    explicit EnvironmentTest(TestEnvironment::Home home = TestEnvironment::Home::Program) : environment(home)
    {
    }

    TestEnvironment environment;
};
