#include "host/web/site/log_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "host/web/messages/cookies.h"

namespace orvo::web {
namespace {

int opened(const std::filesystem::path& file) {
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(),
                                file.string() + ": the log cannot be written");
    return descriptor;
}

}  // namespace

std::string log_time() {
    const DateParts parts = parts_of(current_date());
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ", parts.year,
                  parts.month, parts.day, parts.hour, parts.minute, parts.second);
    return text.data();
}

LogFile::LogFile(const std::filesystem::path& file) : file_(file), descriptor_(opened(file)) {}

LogFile::LogFile(int descriptor) : descriptor_(descriptor) {}

LogFile::~LogFile() {
    if (!file_.empty()) ::close(descriptor_);
}

std::string LogFile::write(const std::string& line) {
    const std::lock_guard guard(lock_);
    std::string text;
    if (is_torn_) text += '\n';
    if (lost_ > 0)
        text += log_time() + " orvo-web: " + std::to_string(lost_) + " lines were lost since " +
                lost_since_ + " (" + reason_ + ")\n";
    if (try_write(text + line)) {
        lost_ = 0;
        return {};
    }
    if (lost_++ > 0) return {};
    lost_since_ = log_time();
    return reason_ = std::generic_category().message(errno);
}

void LogFile::reopen() {
    if (file_.empty()) return;
    const int fresh = opened(file_);
    const std::lock_guard guard(lock_);
    ::close(descriptor_);
    descriptor_ = fresh;
    is_torn_ = false;
}

bool LogFile::try_write(const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const auto written = ::write(descriptor_, text.data() + done, text.size() - done);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) break;
        done += static_cast<std::size_t>(written);
    }
    if (done > 0) is_torn_ = text[done - 1] != '\n';
    return done == text.size();
}

}  // namespace orvo::web
