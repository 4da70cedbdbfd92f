// A variable of the process's environment, as long as the object lives.
#pragma once
#include <cstdlib>
#include <optional>
#include <string>

namespace twr::testing {

class EnvironmentVariable {
public:
    // A null pointer for one that is not set.
    EnvironmentVariable(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) old_ = old;
        Set(value);
    }
    ~EnvironmentVariable() { Set(old_ ? old_->c_str() : nullptr); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;

private:
    void Set(const char* value) const { value ? setenv(name_, value, 1) : unsetenv(name_); }

    const char* const name_;
    std::optional<std::string> old_;
};

}  // namespace twr::testing
