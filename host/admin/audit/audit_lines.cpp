#include "host/admin/audit/audit_lines.h"

#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "suite/log/rotating_file.h"

namespace orvo::admin {
namespace {

[[noreturn]] void raise_unreadable(const std::filesystem::path& name) {
    throw std::system_error(errno, std::generic_category(), name.string());
}

}  // namespace

// From the newest to the oldest: one that is renamed meanwhile is met again, and none is missed.
AuditLines::AuditLines(std::filesystem::path file) : file_(std::move(file)) {
    for (std::size_t times = 0;; ++times) {
        auto open = try_open(rotated_file(file_, times));
        if (!open && times == 0) raise_unreadable(file_);
        if (!open) return;
        if (files_.empty() || files_.back().inode != open->inode)
            files_.push_back(*std::move(open));
    }
}

std::optional<AuditLines::Open> AuditLines::try_open(const std::filesystem::path& name) {
    Open open{name, std::unique_ptr<std::FILE, Close>(std::fopen(name.c_str(), "re")), 0};
    struct stat status;
    if (open.file && fstat(fileno(open.file.get()), &status) == 0) {
        open.inode = status.st_ino;
        return open;
    }
    if (errno != ENOENT) raise_unreadable(name);
    return std::nullopt;
}

std::optional<audit::Event> AuditLines::next() {
    for (;;) {
        while (try_line(files_.back())) {
            auto event = audit::try_parse(line_);
            if (!event) note_strange(files_.back());
            line_.clear();
            if (event) return event;
        }
        if (files_.size() == 1) return std::nullopt;
        if (!line_.empty()) note_strange(files_.back());
        line_.clear();
        files_.pop_back();
    }
}

bool AuditLines::try_next_file() {
    auto open = try_open(file_);
    if (!open || open->inode == files_.back().inode) return false;
    // What was written before it was renamed comes first.
    files_.insert(files_.begin(), *std::move(open));
    return true;
}

bool AuditLines::try_line(Open& open) {
    std::FILE* file = open.file.get();
    std::clearerr(file);
    int c;
    while ((c = std::getc(file)) != EOF && c != '\n') line_ += static_cast<char>(c);
    if (std::ferror(file)) raise_unreadable(open.name);
    if (c == EOF) return false;
    ++open.line;
    return true;
}

void AuditLines::note_strange(const Open& open) {
    if (strange_++ == 0)
        first_strange_ = open.name.filename().string() + ", line " + std::to_string(open.line);
}

}  // namespace orvo::admin
