#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace orvo {

// Sets one variable of the environment, or unsets it, and puts it back as it was at the end of the
// object's life. No other thread may read the environment meanwhile.
class Environment {
public:
    Environment(const char* name, std::optional<std::string> value) : name_(name) {
        if (const char* before = std::getenv(name)) before_ = before;
        put(value);
    }
    ~Environment() { put(before_); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    void put(const std::optional<std::string>& value) {
        if (value)
            setenv(name_, value->c_str(), 1);
        else
            unsetenv(name_);
    }

    const char* name_;
    std::optional<std::string> before_;
};

}  // namespace orvo
