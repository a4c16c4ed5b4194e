#include "suite/log/log_writer.h"

#include <spdlog/details/log_msg.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <cerrno>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>

#include "platform/values/failure.h"

namespace orvo {

namespace {

namespace fs = std::filesystem;

constexpr const char* line_pattern = "%Y-%m-%dT%H:%M:%S.%e%z %v";

// What a sink is given is a whole line, with its end.
std::unique_ptr<spdlog::formatter> as_it_is() {
    return std::make_unique<spdlog::pattern_formatter>("%v", spdlog::pattern_time_type::local, "");
}

Text text_of(const fs::path& path) {
    const auto bytes = path.generic_u8string();
    return from_utf8(std::string(bytes.begin(), bytes.end()));
}

[[noreturn]] void refuse(const fs::path& file, std::string_view reason) {
    throw Failure(log_error::file_not_writable, Text(log_source),
                  text_of(file) + u": the log cannot be written (" + from_utf8(reason) + u")");
}

// spdlog tries an unwritable file again and again, sleeping in between, and gives no plain reason.
void make_writable(const fs::path& file) {
    std::error_code error;
    if (file.has_parent_path()) fs::create_directories(file.parent_path(), error);
    if (error) refuse(file, error.message());
    errno = 0;
    if (!std::ofstream(file, std::ios::app).is_open())
        refuse(file, std::generic_category().message(errno == 0 ? EIO : errno));
}

}  // namespace

class LogWriter::Sinks {
public:
    explicit Sinks(LogTarget target) : target_(std::move(target)) {
        if (target_.standard_error) console_.emplace().set_formatter(as_it_is());
    }

    void write(const spdlog::details::log_msg& entry) {
        const std::lock_guard lock(mutex_);
        spdlog::memory_buf_t line;
        formatter_.format(entry, line);
        spdlog::details::log_msg message = entry;
        message.payload = {line.data(), line.size()};
        if (console_) console_->log(message);
        if (target_.file.empty()) return;
        try {
            write_to_file(message);
        } catch (const spdlog::spdlog_ex& failure) {
            file_.reset();
            refuse(target_.file, failure.what());
        }
    }

private:
    std::optional<std::uintmax_t> size_of_file() const {
        std::error_code error;
        const auto size = fs::file_size(target_.file, error);
        return error ? std::nullopt : std::optional(size);
    }

    void write_to_file(const spdlog::details::log_msg& message) {
        if (needs_look(message)) look(message.time);
        file_->log(message);
        file_->flush();
        if (known_size_) *known_size_ += message.payload.size();
        // Beyond that it is another file by now.
        if (known_size_ > target_.largest_file) known_size_ = size_of_file();
    }

    bool needs_look(const spdlog::details::log_msg& message) const {
        if (!file_ || message.level == spdlog::level::err) return true;
        if (message.time < looked_at_ || message.time - looked_at_ >= look_lasts) return true;
        return known_size_ && *known_size_ + message.payload.size() > target_.largest_file;
    }

    void look(spdlog::log_clock::time_point now) {
        looked_at_ = now;
        if (file_ && size_of_file() != known_size_) file_.reset();
        if (file_) return;
        make_writable(target_.file);
        file_.emplace(target_.file.native(), target_.largest_file, target_.file_count - 1);
        file_->set_formatter(as_it_is());
        known_size_ = size_of_file();
    }

    const LogTarget target_;
    std::mutex mutex_;
    spdlog::pattern_formatter formatter_{line_pattern};
    std::optional<spdlog::sinks::stderr_sink_mt> console_;
    std::optional<spdlog::sinks::rotating_file_sink_st> file_;
    std::optional<std::uintmax_t> known_size_;
    spdlog::log_clock::time_point looked_at_;
};

LogWriter::LogWriter(LogTarget target) : sinks_(std::make_unique<Sinks>(std::move(target))) {}

LogWriter::~LogWriter() = default;

void LogWriter::write_error(std::chrono::system_clock::time_point time, std::string_view entry) {
    sinks_->write({time, {}, {}, spdlog::level::err, {entry.data(), entry.size()}});
}

void LogWriter::write_note(std::chrono::system_clock::time_point time, std::string_view entry) {
    sinks_->write({time, {}, {}, spdlog::level::info, {entry.data(), entry.size()}});
}

LogWriter& log_writer_for(const LogTarget& target) {
    static std::mutex mutex;
    static std::map<LogTarget, LogWriter> writers;
    const std::lock_guard lock(mutex);
    return writers.try_emplace(target, target).first->second;
}

// Asked at every entry, where the environment is as it was at the entry before.
LogWriter& log_writer_of_environment() {
    static std::mutex mutex;
    static LogEnvironment last;
    static LogWriter* writer = nullptr;
    LogEnvironment environment;
    const std::lock_guard lock(mutex);
    if (writer == nullptr || environment != last) {
        writer = &log_writer_for(log_target_of(environment));
        last = std::move(environment);
    }
    return *writer;
}

}  // namespace orvo
