#pragma once

// A file, or a stream of the process, that lines are written to and that may be full for a while.

#include <filesystem>
#include <functional>
#include <mutex>
#include <string>

namespace orvo::web {

// Lines are written whole, each at once. Where one cannot be written, it is lost, and so are those
// after it until there is room again; then a line says how many were lost and from when on. Any
// thread.
class LogFile {
public:
    // To the end of a file, which is made where there is none. Raises std::system_error where it
    // cannot be opened.
    explicit LogFile(const std::filesystem::path& file);
    // To a descriptor that stays open, and is not closed.
    explicit LogFile(int descriptor);
    ~LogFile();
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    // `line` ends with its line feed. Answers why it is the first one to be lost, and nothing for
    // one that is written or lost after others.
    std::string write(const std::string& line);
    // Goes on in a file of the same name, which may have been moved away. Raises std::system_error,
    // and then goes on as before. Does nothing to a stream.
    void reopen();

private:
    // Whether all of it was written; errno says why not.
    bool try_write(const std::string& text);

    const std::filesystem::path file_;
    std::mutex lock_;
    int descriptor_;
    bool is_torn_ = false;  // the last line is there in part
    std::uint64_t lost_ = 0;
    std::string lost_since_;
    std::string reason_;
};

// Now, in Greenwich: "2026-11-21T02:32:11Z"
std::string log_time();

}  // namespace orvo::web
