#include "suite/directory/ldap/wire/openldap_transport.h"

#include <fcntl.h>
#include <ldap.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <new>
#include <optional>

namespace orvo::directory::ldap::detail {
namespace {

using std::chrono::steady_clock;

// Options of this layer alone, beyond the library's own. The first sets the state's `deadline`, the
// second waits for bytes: its argument is an Awaited. The third tells how much has been sent.
constexpr int deadline_option = 0x4F56;
constexpr int await_option = 0x4F57;
constexpr int bytes_sent_option = 0x4F58;

struct Awaited {
    std::chrono::milliseconds limit;
    bool is_timeout = false;
};

// The library keeps a pointer to one of these for each connection.
struct ReadAhead {
    ber_socket_t descriptor = -1;
    std::optional<steady_clock::time_point> deadline;
    std::chrono::milliseconds receive_limit{0};  // that the socket has been given; 0: none
    bool is_writing = false;                     // the library still has some of a request to write
    std::uint64_t bytes_sent = 0;
    std::size_t begin = 0;
    std::size_t end = 0;
    std::array<char, 16384> buffer;
};

ReadAhead& state(Sockbuf_IO_Desc* layer) { return *static_cast<ReadAhead*>(layer->sbiod_pvt); }

int set_up(Sockbuf_IO_Desc* layer, void*) {
    auto* made = new (std::nothrow) ReadAhead;
    layer->sbiod_pvt = made;
    if (!made) return -1;
    return ber_sockbuf_ctrl(layer->sbiod_sb, LBER_SB_OPT_GET_FD, &made->descriptor) == 1 ? 0 : -1;
}

int remove(Sockbuf_IO_Desc* layer) {
    delete static_cast<ReadAhead*>(layer->sbiod_pvt);
    layer->sbiod_pvt = nullptr;
    return 0;
}

bool is_nothing_yet(ssize_t received) {
    return received < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
}

// A failure and the connection's end show once more to who reads.
void await(ReadAhead& ahead, Awaited& awaited) {
    if (ahead.receive_limit != awaited.limit) {
        const auto count = awaited.limit.count();
        const timeval time{static_cast<time_t>(count / 1000),
                           static_cast<suseconds_t>(count % 1000 * 1000)};
        ::setsockopt(ahead.descriptor, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
        ahead.receive_limit = awaited.limit;
    }
    const ssize_t received = ::recv(ahead.descriptor, ahead.buffer.data(), ahead.buffer.size(), 0);
    awaited.is_timeout = is_nothing_yet(received);
    ahead.begin = 0;
    ahead.end = received > 0 ? static_cast<std::size_t>(received) : 0;
}

int control(Sockbuf_IO_Desc* layer, int option, void* argument) {
    if (option == await_option) {
        if (!state(layer).is_writing) await(state(layer), *static_cast<Awaited*>(argument));
        return 1;
    }
    if (option == bytes_sent_option) {
        *static_cast<std::uint64_t*>(argument) = state(layer).bytes_sent;
        return 1;
    }
    if (option == deadline_option) {
        state(layer).deadline = *static_cast<std::optional<steady_clock::time_point>*>(argument);
        return 1;
    }
    if (option == LBER_SB_OPT_DATA_READY && state(layer).begin < state(layer).end) return 1;
    return LBER_SBIOD_CTRL_NEXT(layer, option, argument);
}

// What is buffered, as much as is wanted.
std::size_t take(ReadAhead& ahead, char* target, std::size_t wanted) {
    const std::size_t taken = std::min(wanted, ahead.end - ahead.begin);
    std::memcpy(target, ahead.buffer.data() + ahead.begin, taken);
    ahead.begin += taken;
    return taken;
}

// Whether it is worth trying again what has just failed. Leaves ETIMEDOUT after the deadline.
bool try_again(const ReadAhead& ahead, short event) {
    if (errno == EINTR) return true;
    if ((errno != EAGAIN && errno != EWOULDBLOCK) || !ahead.deadline) return false;
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(*ahead.deadline - steady_clock::now());
    if (left.count() <= 0) {
        errno = ETIMEDOUT;
        return false;
    }
    pollfd waiting{ahead.descriptor, event, 0};
    return ::poll(&waiting, 1, static_cast<int>(left.count())) >= 0 || errno == EINTR;
}

ssize_t receive(ReadAhead& ahead) {
    ssize_t received = -1;
    do {
        received = ::recv(ahead.descriptor, ahead.buffer.data(), ahead.buffer.size(), MSG_DONTWAIT);
    } while (received < 0 && try_again(ahead, POLLIN));
    ahead.begin = 0;
    ahead.end = received > 0 ? static_cast<std::size_t>(received) : 0;
    return received;
}

ber_slen_t read(Sockbuf_IO_Desc* layer, void* target, ber_len_t wanted) {
    ReadAhead& ahead = state(layer);
    char* bytes = static_cast<char*>(target);
    std::size_t taken = take(ahead, bytes, wanted);
    if (taken < wanted) {
        const ssize_t received = receive(ahead);
        if (received <= 0 && taken == 0) return received;
        taken += take(ahead, bytes + taken, wanted - taken);
    }
    return static_cast<ber_slen_t>(taken);
}

ber_slen_t write(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t count) {
    ReadAhead& ahead = state(layer);
    ssize_t sent = -1;
    do {
        sent = ::send(ahead.descriptor, bytes, count, MSG_NOSIGNAL | MSG_DONTWAIT);
    } while (sent < 0 && try_again(ahead, POLLOUT));
    if (sent > 0) ahead.bytes_sent += static_cast<std::uint64_t>(sent);
    ahead.is_writing = sent != static_cast<ssize_t>(count);
    return sent;
}

int close(Sockbuf_IO_Desc*) { return 0; }

Sockbuf_IO transport = {set_up, remove, control, read, write, close};

int set_up_wiping(Sockbuf_IO_Desc*, void*) { return 0; }
int remove_wiping(Sockbuf_IO_Desc*) { return 0; }
int control_wiping(Sockbuf_IO_Desc* layer, int option, void* argument) {
    return LBER_SBIOD_CTRL_NEXT(layer, option, argument);
}
ber_slen_t read_wiping(Sockbuf_IO_Desc* layer, void* target, ber_len_t wanted) {
    return LBER_SBIOD_READ_NEXT(layer, target, wanted);
}
// What is not written yet is handed over again.
ber_slen_t write_wiping(Sockbuf_IO_Desc* layer, void* bytes, ber_len_t count) {
    const ber_slen_t written = LBER_SBIOD_WRITE_NEXT(layer, bytes, count);
    if (written > 0) ::explicit_bzero(bytes, static_cast<std::size_t>(written));
    return written;
}

Sockbuf_IO wiping = {set_up_wiping, remove_wiping, control_wiping,
                     read_wiping,   write_wiping,  close};

Sockbuf* connection_of(::ldap* handle) {
    Sockbuf* connection = nullptr;
    ldap_get_option(handle, LDAP_OPT_SOCKBUF, &connection);
    return connection;
}

void set_deadline(::ldap* handle, std::optional<steady_clock::time_point> deadline) {
    ber_sockbuf_ctrl(connection_of(handle), deadline_option, &deadline);
}

}  // namespace

bool add_transport(::ldap* handle, unsigned long longest_message) {
    Sockbuf* connection = connection_of(handle);
    ber_len_t longest = longest_message;
    return connection &&
           ber_sockbuf_ctrl(connection, LBER_SB_OPT_SET_MAX_INCOMING, &longest) == 1 &&
           ber_sockbuf_add_io(connection, &transport, LBER_SBIOD_LEVEL_PROVIDER, nullptr) == 0 &&
           ber_sockbuf_add_io(connection, &wiping, LBER_SBIOD_LEVEL_APPLICATION, nullptr) == 0;
}

void wait_until(::ldap* handle, steady_clock::time_point deadline) {
    set_deadline(handle, deadline);
}

void never_wait(::ldap* handle) {
    set_deadline(handle, std::nullopt);
    ber_socket_t descriptor = -1;
    ber_sockbuf_ctrl(connection_of(handle), LBER_SB_OPT_GET_FD, &descriptor);
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
}

bool await_bytes(::ldap* handle, std::chrono::milliseconds limit) {
    Sockbuf* connection = connection_of(handle);
    // What has been received and, where it is encrypted, deciphered is not in the buffer any more.
    if (ber_sockbuf_ctrl(connection, LBER_SB_OPT_DATA_READY, nullptr) != 0) return true;
    Awaited awaited{limit};
    ber_sockbuf_ctrl(connection, await_option, &awaited);
    return !awaited.is_timeout;
}

std::uint64_t bytes_sent(::ldap* handle) {
    std::uint64_t count = 0;
    ber_sockbuf_ctrl(connection_of(handle), bytes_sent_option, &count);
    return count;
}

bool is_quiet(::ldap* handle) {
    Sockbuf* connection = connection_of(handle);
    ber_socket_t descriptor = -1;
    if (ber_sockbuf_ctrl(connection, LBER_SB_OPT_GET_FD, &descriptor) != 1 ||
        ber_sockbuf_ctrl(connection, LBER_SB_OPT_DATA_READY, nullptr) != 0)
        return false;
    char next = 0;
    return ::recv(descriptor, &next, 1, MSG_PEEK | MSG_DONTWAIT) < 0 &&
           (errno == EAGAIN || errno == EWOULDBLOCK);
}

}  // namespace orvo::directory::ldap::detail
