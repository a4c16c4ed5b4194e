#include "host/web/service_manager.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <system_error>

#include "tests/support/temp_folder.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

class ServiceManagerTest : public testing::Test {
protected:
    ServiceManagerTest() : listener(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {}
    ~ServiceManagerTest() override {
        close(listener);
        for (const char* name : {"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID"}) unsetenv(name);
    }
    // As the variable has it; a first "@" stands for the byte 0.
    void listen(const std::string& name) {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        name.copy(address.sun_path, sizeof address.sun_path);
        if (name[0] == '@') address.sun_path[0] = '\0';
        const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
        ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), size), 0);
        setenv("NOTIFY_SOCKET", name.c_str(), 1);
    }
    std::string heard() {
        char message[256];
        const ssize_t size = recv(listener, message, sizeof message, MSG_DONTWAIT);
        return size < 0 ? "" : std::string(message, size);
    }

    TempFolder folder;
    int listener;
};

TEST_F(ServiceManagerTest, HearsWhatTheProcessDoes) {
    for (const std::string& name :
         {(folder.path() / "notify").string(), "@orvo-" + std::to_string(getpid()) + "-notify"}) {
        close(listener);
        listener = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        listen(name);
        const ServiceManager manager;
        EXPECT_EQ(getenv("NOTIFY_SOCKET"), nullptr);
        manager.ready();
        EXPECT_EQ(heard(), "READY=1");
        manager.reloading();
        EXPECT_EQ(heard(), "RELOADING=1");
        manager.alive();
        EXPECT_EQ(heard(), "WATCHDOG=1");
        manager.stopping();
        EXPECT_EQ(heard(), "STOPPING=1");
    }
}

TEST_F(ServiceManagerTest, IsToldTwiceInTheTimeThatItWaits) {
    listen((folder.path() / "notify").string());
    setenv("WATCHDOG_USEC", "30000000", 1);
    EXPECT_EQ(ServiceManager().watch(), 15s);
    EXPECT_EQ(getenv("WATCHDOG_USEC"), nullptr);
}

TEST_F(ServiceManagerTest, WaitsForNobodyWhenItWatchesAnotherProcess) {
    listen((folder.path() / "notify").string());
    setenv("WATCHDOG_USEC", "30000000", 1);
    setenv("WATCHDOG_PID", std::to_string(getppid()).c_str(), 1);
    EXPECT_EQ(ServiceManager().watch(), 0s);
}

TEST_F(ServiceManagerTest, IsNotThereWithoutItsVariables) {
    const ServiceManager manager;
    EXPECT_EQ(manager.watch(), 0s);
    manager.ready();
    manager.alive();
}

TEST_F(ServiceManagerTest, IsRefusedWhereItCannotBe) {
    setenv("NOTIFY_SOCKET", (folder.path() / "nobody").c_str(), 1);
    EXPECT_THROW(ServiceManager().ready(), std::system_error);
    setenv("NOTIFY_SOCKET", std::string(200, 'x').c_str(), 1);
    EXPECT_THROW(ServiceManager(), std::runtime_error);
    listen((folder.path() / "notify").string());
    setenv("WATCHDOG_USEC", "soon", 1);
    EXPECT_THROW(ServiceManager(), std::runtime_error);
}

}  // namespace
}  // namespace orvo::web
