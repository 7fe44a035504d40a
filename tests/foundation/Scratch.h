// What tests of the process's surroundings need: a directory of their own and variables that are put back.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

/// A new directory below the system's temporary one, removed with all in it.
class ScratchDir {
public:
    ScratchDir()
    {
        std::string name = std::filesystem::temp_directory_path() / "zvtest.XXXXXX";
        path_ = mkdtemp(name.data());
    }
    ~ScratchDir()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchDir(ScratchDir const&) = delete;
    ScratchDir& operator=(ScratchDir const&) = delete;

    /// A path in the directory; the directory itself for an empty name.
    std::string Path(std::string const& name = {}) const { return name.empty() ? path_ : path_ + "/" + name; }

    /// The same as a file spec.
    std::string Spec(std::string const& name = {}) const
    {
        std::string spec = "Root:" + Path(name);
        for (char& c : spec)
            if (c == '/') c = '\\';
        return spec;
    }

    void Make(std::string const& name) const { std::filesystem::create_directories(Path(name)); }

private:
    std::string path_;
};

/// An environment variable for as long as this lives; null unsets it.
class ScopedVariable {
public:
    ScopedVariable(char const* name, char const* value) : name_(name)
    {
        if (char const* old = std::getenv(name)) old_ = old;
        Set(value);
    }
    ~ScopedVariable() { Set(old_ ? old_->c_str() : nullptr); }
    ScopedVariable(ScopedVariable const&) = delete;
    ScopedVariable& operator=(ScopedVariable const&) = delete;

private:
    void Set(char const* value) const { value ? setenv(name_, value, 1) : unsetenv(name_); }

    char const* name_;
    std::optional<std::string> old_;
};
