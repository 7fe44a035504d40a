// What tests start from that start the library themselves, each in surroundings of its own.
#pragma once

#include "TestEnvironment.h"

#include <optional>

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

/// Keeps the user's real directories out of the tests.
class StartTest : public testing::Test {
protected:
    ~StartTest() override { CleanUpZV(); }

    /// Starts the library anew, without interface.
    template <typename... Tags> void Start(Tags... tags)
    {
        CleanUpZV();
        ASSERT_NE(InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 0, tags...), nullptr);
    }

    ScratchDir dir;
    ScopedVariable homeVariable{"HOME", dir.Path().c_str()};
    ScopedVariable dataVariable{"KL_APP_DATA_DIR", nullptr};
};
