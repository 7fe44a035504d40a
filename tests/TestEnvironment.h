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

class TestEnvironment {
public:
    enum class Home { Program, Directory };

    /// The home directory is worked out from the program, or is the test's own directory.
    explicit TestEnvironment(Home home = Home::Program) : TestEnvironment(home, nullptr) {}

    /// The home directory is that path or spec.
    explicit TestEnvironment(char const* homeDir) : TestEnvironment(Home::Program, homeDir) {}

    TestEnvironment(TestEnvironment const&) = delete;
    TestEnvironment& operator=(TestEnvironment const&) = delete;

    ~TestEnvironment()
    {
        CleanUpZV();
        Remove_Directory();
    }

    /// Native path of a file in the directory; of the directory itself without a name.
    std::string Path(std::string const& name = "") const { return directory_ + "/" + name; }

    /// The same as a file spec.
    std::string Spec(std::string const& name = "") const
    {
        std::string spec = Path(name);
        std::replace(spec.begin(), spec.end(), '/', '\\');
        return "Root:" + spec;
    }

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
    TestEnvironment(Home home, char const* homeDir)
    {
        std::string pattern = std::filesystem::temp_directory_path() / "zvtest.XXXXXX";
        if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary directory");
        directory_ = pattern;
        setenv("KL_APP_DATA_DIR", directory_.c_str(), 1);
        if (home == Home::Directory) homeDir = directory_.c_str();
        if (InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 1, ZV_INIT_HOME_DIR, homeDir, 0))
            return;
        Remove_Directory();
        char const* const reason = GetErrorStringZV();
        throw std::runtime_error(reason ? reason : "InitZV failed");
    }

    void Remove_Directory()
    {
        unsetenv("KL_APP_DATA_DIR");
        std::error_code ignored;
        std::filesystem::remove_all(directory_, ignored);
    }

    std::string directory_;
};

/// Base of fixtures that need nothing more than that.
class EnvironmentTest : public testing::Test {
protected:
    TestEnvironment environment;
};
