#include "host/web/files/compressed_files.h"

#include <zlib.h>

#include <new>

namespace orvo::web {

std::string gzip_of(std::string_view bytes) {
    constexpr int gzip_form = 16, window = 15, memory = 8;
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, window + gzip_form, memory,
                     Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
    const std::unique_ptr<z_stream, decltype(&deflateEnd)> end(&stream, deflateEnd);
    std::string compressed(deflateBound(&stream, bytes.size()), '\0');
    // zlib only reads it.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(compressed.data());
    stream.avail_out = static_cast<uInt>(compressed.size());
    if (deflate(&stream, Z_FINISH) != Z_STREAM_END) throw std::bad_alloc();
    compressed.resize(stream.total_out);
    return compressed;
}

std::shared_ptr<const std::string> CompressedFiles::of(const std::string& version,
                                                       const OpenFile& file) {
    if (file.size() < smallest_file || file.size() > largest_file) return nullptr;
    std::shared_ptr<const std::string> content;
    if (find(version, content)) return content;
    std::string bytes(file.size(), '\0');
    bytes.resize(file.read(0, bytes));
    std::string compressed = gzip_of(bytes);
    if (compressed.size() < bytes.size())
        content = std::make_shared<const std::string>(std::move(compressed));
    keep({version, content});
    return content;
}

bool CompressedFiles::find(const std::string& version,
                           std::shared_ptr<const std::string>& content) {
    const std::lock_guard guard(lock_);
    const auto found = by_version_.find(version);
    if (found == by_version_.end()) return false;
    entries_.splice(entries_.begin(), entries_, found->second);
    content = entries_.front().content;
    return true;
}

void CompressedFiles::keep(Entry entry) {
    const std::lock_guard guard(lock_);
    // Another thread may have been quicker.
    if (by_version_.contains(entry.version)) return;
    kept_ += size_of(entry);
    entries_.push_front(std::move(entry));
    by_version_[entries_.front().version] = entries_.begin();
    while (kept_ > most_bytes_) {
        kept_ -= size_of(entries_.back());
        by_version_.erase(entries_.back().version);
        entries_.pop_back();
    }
}

std::size_t CompressedFiles::size_of(const Entry& entry) {
    // The rest stands for what keeping it takes.
    return 2 * entry.version.size() + (entry.content ? entry.content->size() : 0) + 128;
}

std::size_t CompressedFiles::kept() const {
    const std::lock_guard guard(lock_);
    return kept_;
}

}  // namespace orvo::web
