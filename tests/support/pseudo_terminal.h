#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace orvo {

// A program in front of a terminal of a test's own, as a person sees it. Raises std::runtime_error
// where something that is waited for does not come within a minute.
class PseudoTerminal {
public:
    // Runs `arguments`, the first of which is the path of the program, on a terminal so wide.
    explicit PseudoTerminal(const std::vector<std::string>& arguments, unsigned short columns = 80);
    // Kills it if it still runs.
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    // Waits until this has been shown since the last such text.
    void expect(const std::string& text);
    // Types it.
    void type(const std::string& text);
    // Waits for the program's end; its exit code, or 128 + signal number.
    int wait();

    // All that was shown, with "\r\n" at the ends of lines.
    const std::string& shown() const { return shown_; }

private:
    bool read_more();

    int terminal_ = -1;
    pid_t pid_ = -1;
    std::string shown_;
    std::size_t seen_ = 0;
};

}  // namespace orvo
