#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "suite/store/command.h"
#include "suite/store/reply_reader.h"
#include "suite/store/store_settings.h"

namespace orvo::store {

// What a healthy master answers to a login, and "+OK" to everything else.
std::string usual_answer(const Command& command);

// Takes the place of a server on the loopback address, answers what a test says and notes what it
// was asked. Ends with the object.
class ScriptedRedis {
public:
    // What is answered to a command of a connection (the first is 0); nothing: the connection is
    // closed. "": silence. Called on the server's thread.
    using Answer = std::function<std::optional<std::string>(int connection, const Command&)>;

    explicit ScriptedRedis(Answer answer);
    ~ScriptedRedis();
    ScriptedRedis(const ScriptedRedis&) = delete;
    ScriptedRedis& operator=(const ScriptedRedis&) = delete;

    int port() const { return port_; }
    // Settings of who uses it.
    Settings settings() const;
    // The commands that came so far, but for those of logins.
    std::vector<Command> commands() const;

private:
    struct Peer {
        explicit Peer(int connection) : number(connection) {}
        const int number;
        ReplyReader reader;
    };

    void serve();
    bool serve(int socket, Peer& peer);

    const Answer answer_;
    int listener_;
    int port_ = 0;
    int wake_[2];
    mutable std::mutex mutex_;
    std::vector<Command> commands_;  // under mutex_
    std::thread thread_;
};

}  // namespace orvo::store
