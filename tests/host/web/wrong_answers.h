#pragma once

#include <atomic>
#include <mutex>
#include <string>

#include "tests/support/http_client.h"

namespace orvo::web {

// What many browsers at once were answered that was not as expected. Any thread.
class WrongAnswers {
public:
    // Whether it is as expected. The body counts of a 200 alone.
    bool expect(const HttpResult& result, int status, const std::string& body) {
        if (result && result->status == status && (status != 200 || result->body == body))
            return true;
        ++count_;
        const std::lock_guard guard(lock_);
        if (first_.empty())
            first_ =
                "expected " + std::to_string(status) + ' ' + body + ", got " +
                (result ? std::to_string(result->status) + ' ' + result->body : result.error());
        return false;
    }
    int count() const { return count_; }
    std::string first() const {
        const std::lock_guard guard(lock_);
        return first_;
    }

private:
    std::atomic<int> count_ = 0;
    mutable std::mutex lock_;
    std::string first_;
};

}  // namespace orvo::web
