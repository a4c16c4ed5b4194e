#include "suite/directory/ldap/openldap_transport.h"

#include <fcntl.h>
#include <ldap.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <new>

namespace orvo::ldap::detail {
namespace {

// The library keeps a pointer to one of these for each connection.
struct ReadAhead {
    ber_socket_t descriptor = -1;
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

int control(Sockbuf_IO_Desc* layer, int option, void* argument) {
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

ssize_t receive(ReadAhead& ahead) {
    ssize_t received = -1;
    do {
        received = ::recv(ahead.descriptor, ahead.buffer.data(), ahead.buffer.size(), 0);
    } while (received < 0 && errno == EINTR);
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
    return ::send(state(layer).descriptor, bytes, count, MSG_NOSIGNAL);
}

int close(Sockbuf_IO_Desc*) { return 0; }

Sockbuf_IO transport = {set_up, remove, control, read, write, close};

}  // namespace

bool add_transport(::ldap* handle, unsigned long longest_message) {
    Sockbuf* connection = nullptr;
    if (ldap_get_option(handle, LDAP_OPT_SOCKBUF, &connection) != LDAP_OPT_SUCCESS || !connection)
        return false;
    ber_len_t longest = longest_message;
    return ber_sockbuf_ctrl(connection, LBER_SB_OPT_SET_MAX_INCOMING, &longest) == 1 &&
           ber_sockbuf_add_io(connection, &transport, LBER_SBIOD_LEVEL_PROVIDER, nullptr) == 0;
}

void keep_from_blocking(int descriptor) {
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

}  // namespace orvo::ldap::detail
