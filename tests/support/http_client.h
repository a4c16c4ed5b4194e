#pragma once

// A client that asks a server on the loopback address by HTTP/1.1, plain or by TLS.

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvo {

using HttpFields = std::vector<std::pair<std::string, std::string>>;

// An answer; false where none came as a whole, error() says why then.
class HttpResult {
public:
    struct Answer {
        int status = 0;
        HttpFields headers = {};
        std::string body = {};

        std::size_t get_header_value_count(std::string_view name) const;
        // Of several the one with this index; empty where there is none.
        std::string get_header_value(std::string_view name, std::size_t index = 0) const;
    };

    explicit HttpResult(Answer answer) : answer_(std::make_shared<Answer>(std::move(answer))) {}
    explicit HttpResult(std::string error) : error_(std::move(error)) {}

    explicit operator bool() const { return answer_ != nullptr; }
    // Raises std::runtime_error where there is no answer.
    const Answer* operator->() const;
    const std::string& error() const { return error_; }

private:
    std::shared_ptr<const Answer> answer_;
    std::string error_;
};

// Keeps its connection while the server does, and makes a new one where it has gone. One thread.
class HttpClient {
public:
    // certificate: of the server, by TLS; empty: plain. patience: seconds until it gives up when
    // nothing comes. greeting: what each connection begins with, in front of TLS.
    explicit HttpClient(int port, std::filesystem::path certificate = {}, int patience = 60,
                        std::string greeting = {});
    ~HttpClient();
    HttpClient(HttpClient&&) noexcept;

    HttpResult get(const std::string& target, const HttpFields& headers = {});
    HttpResult post(const std::string& target, const std::string& body,
                    const std::string& content_type, const HttpFields& headers = {});
    // A form, urlencoded.
    HttpResult post(const std::string& target, const HttpFields& form,
                    const HttpFields& headers = {});

private:
    class Connection;

    HttpResult ask(const std::string& request);

    const int port_;
    const std::filesystem::path certificate_;
    const int patience_;
    const std::string greeting_;
    std::unique_ptr<Connection> connection_;
};

}  // namespace orvo
