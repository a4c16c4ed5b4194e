// Clients of the administration socket that are slow, or say nothing.

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <ctime>
#include <optional>
#include <thread>

#include "host/web/administration/administration_socket.h"
#include "tests/support/lowered_limit.h"
#include "tests/support/temp_folder.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

class Client {
public:
    Client() = default;
    explicit Client(const std::filesystem::path& file) { connect_to(file); }
    ~Client() { close(descriptor_); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void connect_to(const std::filesystem::path& file) const {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        file.native().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
    }

    bool say(const std::string& text) const {
        return send(descriptor_, text.data(), text.size(), MSG_NOSIGNAL) > 0;
    }
    // Whether an answer or the end comes within that time.
    bool hears(std::chrono::milliseconds within) const {
        pollfd waited{descriptor_, POLLIN, 0};
        return poll(&waited, 1, static_cast<int>(within.count())) > 0;
    }
    // All that comes until the end.
    std::string heard() const {
        std::string text;
        char part[100];
        for (ssize_t size; (size = recv(descriptor_, part, sizeof part, 0)) > 0;)
            text.append(part, static_cast<std::size_t>(size));
        return text;
    }
    void wait_until_read() const {
        for (int unread = 1; unread > 0; std::this_thread::yield())
            ASSERT_EQ(ioctl(descriptor_, TIOCOUTQ, &unread), 0);
    }

private:
    const int descriptor_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

class AnAdministrationSocket : public testing::Test {
protected:
    void listen(std::chrono::milliseconds patience) {
        socket_.emplace(
            file_, [](std::string_view request) { return "heard " + std::string(request); },
            patience);
    }

    TempFolder folder_;
    const std::filesystem::path file_ = folder_.path() / "admin.sock";
    std::optional<AdministrationSocket> socket_;
};

TEST_F(AnAdministrationSocket, AnswersARequestHoweverItComes) {
    listen(1h);
    const Client whole(file_), parts(file_);
    EXPECT_TRUE(whole.say("servers\nmore"));
    EXPECT_EQ(whole.heard(), "heard servers");
    EXPECT_TRUE(parts.say("ser"));
    parts.wait_until_read();
    EXPECT_TRUE(parts.say("vers\n"));
    EXPECT_EQ(parts.heard(), "heard servers");
    constexpr std::size_t most = AdministrationSocket::longest_request;
    const Client longest(file_), too_long(file_);
    EXPECT_TRUE(longest.say(std::string(most, 'x') + '\n'));
    EXPECT_EQ(longest.heard(), "heard " + std::string(most, 'x'));
    EXPECT_TRUE(too_long.say(std::string(most + 1, 'x') + '\n'));
    EXPECT_EQ(too_long.heard(), "");
}

TEST_F(AnAdministrationSocket, GivesAWholeRequestSoMuchTimeAndNotEachOctet) {
    listen(100ms);
    const Client slow(file_), next(file_);
    EXPECT_TRUE(next.say("servers\n"));
    int octets = 0;
    while (octets < 150 && slow.say("x") && !slow.hears(10ms)) ++octets;
    EXPECT_LT(octets, 100);
    EXPECT_EQ(next.heard(), "heard servers");
}

TEST_F(AnAdministrationSocket, EndsWithoutWaitingForAClient) {
    listen(1h);
    const Client client(file_);
    EXPECT_TRUE(client.say("half"));
    client.wait_until_read();
    socket_.reset();
    EXPECT_EQ(client.heard(), "");
    EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(AnAdministrationSocket, RestsWhileTheProcessHasNoDescriptorsLeft) {
    listen(1h);
    Client client;
    {
        const LoweredLimit none(RLIMIT_NOFILE, 3);
        client.connect_to(file_);
        EXPECT_TRUE(client.say("servers\n"));
        const std::clock_t begin = std::clock();
        EXPECT_FALSE(client.hears(300ms));
        EXPECT_LT(std::clock() - begin, CLOCKS_PER_SEC / 100);
    }
    EXPECT_EQ(client.heard(), "heard servers");
}

}  // namespace
}  // namespace orvo::web
