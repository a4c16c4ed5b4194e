#include "suite/store/reply_reader.h"

#include <hiredis/hiredis.h>

#include <new>
#include <vector>

#include "platform/values/secret.h"
#include "suite/store/lost.h"

namespace orvo::store {

// What the library calls for each part of a reply. It is C, through which nothing may be raised: a
// null pointer says that there is no memory.
struct ReplyReader::Building {
    static void* place(const redisReadTask* task, Reply&& made) {
        if (!task->parent) return new Reply(std::move(made));
        auto& list = std::get<Reply::List>(static_cast<Reply*>(task->parent->obj)->value_);
        return &list.emplace_back(std::move(made));
    }
    template <class Make>
    static void* try_place(const redisReadTask* task, Make make) {
        try {
            return place(task, make());
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
    }

    static void* text(const redisReadTask* task, char* bytes, std::size_t size) {
        return try_place(task, [&] {
            std::string made(bytes, size);
            return task->type == REDIS_REPLY_ERROR ? Reply(Reply::Error{std::move(made)})
                                                   : Reply(std::move(made));
        });
    }
    // It is filled as its elements come: what it announces costs nothing.
    static void* list(const redisReadTask* task, int) {
        return try_place(task, [] { return Reply(Reply::List()); });
    }
    static void* integer(const redisReadTask* task, long long number) {
        return try_place(task, [&] { return Reply(std::int64_t{number}); });
    }
    static void* null(const redisReadTask* task) {
        return try_place(task, [] { return Reply(); });
    }
    static void free(void* root) { delete static_cast<Reply*>(root); }

    static inline redisReplyObjectFunctions functions = {text, list, integer, null, free};
};

void ReplyReader::Free::operator()(redisReader* reader) const { redisReaderFree(reader); }

ReplyReader::ReplyReader() : reader_(redisReaderCreateWithFunctions(&Building::functions)) {
    if (!reader_) throw std::bad_alloc();
}

void ReplyReader::feed(std::string_view bytes) {
    unfinished_ += bytes.size();
    if (unfinished_ > largest_reply) throw Lost("it sends a reply that is too large");
    if (redisReaderFeed(reader_.get(), bytes.data(), bytes.size()) != REDIS_OK)
        throw Lost(reader_->errstr);
}

std::optional<Reply> ReplyReader::next() {
    void* made = nullptr;
    if (redisReaderGetReply(reader_.get(), &made) != REDIS_OK)
        throw Lost(std::string("it sends what is no reply: ") + reader_->errstr);
    if (!made) return std::nullopt;
    unfinished_ = reader_->len - reader_->pos;
    const std::unique_ptr<Reply> reply(static_cast<Reply*>(made));
    return std::move(*reply);
}

std::string wire_form(std::span<const std::string_view> words) {
    std::vector<const char*> starts;
    std::vector<std::size_t> sizes;
    for (const std::string_view word : words) {
        starts.push_back(word.data());
        sizes.push_back(word.size());
    }
    char* formatted = nullptr;
    const int size = redisFormatCommandArgv(&formatted, static_cast<int>(words.size()),
                                            starts.data(), sizes.data());
    if (size < 0) throw std::bad_alloc();
    std::string bytes(formatted, static_cast<std::size_t>(size));
    overwrite(formatted, bytes.size());
    redisFreeCommand(formatted);
    return bytes;
}

}  // namespace orvo::store
