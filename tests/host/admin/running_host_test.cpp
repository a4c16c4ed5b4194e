#include "host/admin/process/running_host.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <stdexcept>

#include "tests/support/temp_folder.h"

namespace orvo::admin {
namespace {

using namespace std::chrono_literals;

std::string failure_of(const std::filesystem::path& socket) {
    try {
        ask_host(socket, "servers", 10ms);
    } catch (const std::runtime_error& failure) {
        return failure.what();
    }
    return "none";
}

// Somebody listens, and that is all.
TEST(RunningHost, ThatDoesNotAnswerIsNotWaitedForForGood) {
    const TempFolder folder;
    const std::filesystem::path file = folder.path() / "host.sock";
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    file.native().copy(address.sun_path, sizeof address.sun_path - 1);
    const int host = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(host, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(failure_of(file),
              file.string() +
                  ": no host answers (Connection refused); name its AdminSocket with --socket, and "
                  "be root or the user that it runs as");
    ASSERT_EQ(listen(host, 0), 0);
    const std::string silent =
        file.string() + ": the host does not answer; see whether its process stands still";
    EXPECT_EQ(failure_of(file), silent) << "it takes the request";
    EXPECT_EQ(failure_of(file), silent) << "its queue is full";
    close(host);
}

}  // namespace
}  // namespace orvo::admin
