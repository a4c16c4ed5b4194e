#include "suite/directory/ldap/wire/openldap_connection.h"

#include <ldap.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openldap.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <mutex>
#include <system_error>
#include <utility>

#include "platform/network/deadline.h"
#include "platform/network/resolver.h"
#include "suite/directory/ldap/wire/certificate.h"
#include "suite/directory/ldap/wire/openldap_transport.h"
#include "suite/directory/ldap/wire/reach.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::directory::ldap::detail {
namespace {

using std::chrono::milliseconds;

// A longer message is taken for garbage; without a limit a wrong length would be allocated first.
constexpr ber_len_t longest_message = 64u << 20;

class Socket {
public:
    explicit Socket(int descriptor) : descriptor_(descriptor) {}
    Socket(const Socket&) = delete;
    ~Socket() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    int get() const { return descriptor_; }
    int detach() { return std::exchange(descriptor_, -1); }

private:
    int descriptor_;
};

timeval timeval_of(milliseconds limit) {
    return {static_cast<time_t>(limit.count() / 1000),
            static_cast<suseconds_t>(limit.count() % 1000 * 1000)};
}

std::string system_message(int error) { return std::generic_category().message(error); }

// 0, or the system's error.
int connect_within(int descriptor, const addrinfo& address, const Deadline& deadline) {
    const milliseconds limit = deadline.left();
    if (limit.count() == 0) return ETIMEDOUT;
    const timeval time = timeval_of(limit);
    if (::setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof time) < 0) return errno;
    if (::connect(descriptor, address.ai_addr, address.ai_addrlen) == 0) return 0;
    // After the socket's limit it is still being done (socket(7)); a signal leaves it to go on.
    if (errno != EINTR) return errno == EINPROGRESS ? ETIMEDOUT : errno;
    for (;;) {
        const milliseconds left = deadline.left();
        if (left.count() == 0) return ETIMEDOUT;
        pollfd waiting{descriptor, POLLOUT, 0};
        const int ready = ::poll(&waiting, 1, static_cast<int>(left.count()));
        if (ready < 0 && errno != EINTR) return errno;
        if (ready <= 0) continue;
        int error = 0;
        socklen_t size = sizeof error;
        if (::getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &error, &size) < 0) return errno;
        return error;
    }
}

// A server that is lost without a word is noticed: what was sent has to be acknowledged within the
// limit of an answer, and a connection that is idle is asked for a sign of life after 30 seconds,
// three times at most.
void set_socket_options(int descriptor, const Limits& limits) {
    const auto set = [descriptor](int level, int option, int value) {
        ::setsockopt(descriptor, level, option, &value, sizeof value);
    };
    set(IPPROTO_TCP, TCP_NODELAY, 1);
    set(IPPROTO_TCP, TCP_USER_TIMEOUT, static_cast<int>(limits.answer.count()));
    set(SOL_SOCKET, SO_KEEPALIVE, 1);
    set(IPPROTO_TCP, TCP_KEEPIDLE, 30);
    set(IPPROTO_TCP, TCP_KEEPINTVL, 5);
    set(IPPROTO_TCP, TCP_KEEPCNT, 3);
}

// As they are tried; none: `why` tells.
auto addresses_of(const ServerHost& host, const Deadline& deadline, Result& why) {
    FoundAddresses found = orvo::find_addresses(host.name, host.port, deadline);
    if (found.error == EAI_INPROGRESS)
        why = {result_code::timeout, "its address was not found", {}};
    else if (found.error != 0)
        why = {result_code::server_down, gai_strerror(found.error), {}};
    return std::move(found.list);
}

// A connected socket, which waits unless it is told otherwise; -1: `why` tells.
int connected_socket(const ServerHost& host, const Limits& limits, const Deadline& deadline,
                     Result& why) {
    const auto addresses = addresses_of(host, deadline, why);
    int reason = 0;
    for (const addrinfo* address = addresses.get(); address; address = address->ai_next) {
        Socket socket(::socket(address->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
        if (socket.get() < 0) {
            reason = errno;
            continue;
        }
        reason = connect_within(socket.get(), *address, deadline);
        if (reason != 0) continue;
        set_socket_options(socket.get(), limits);
        return socket.detach();
    }
    if (reason == ETIMEDOUT) {
        why = {result_code::timeout, "there was no connection", {}};
    } else if (addresses) {
        why = {result_code::server_down, system_message(reason), {}};
    }
    return -1;
}

// Whether a server's certificate is to be verified. One that is not is only looked at, and nothing
// is sent over its connection.
enum class Verify { demanded, never };

int set_options(LDAP* handle, const ServerHost& host, const Deadline& deadline, Verify verify) {
    const int version = LDAP_VERSION3;
    const int never = LDAP_DEREF_NEVER;
    const int unlimited = LDAP_NO_LIMIT;
    const timeval network = timeval_of(std::max(deadline.left(), milliseconds(1)));
    int failed = ldap_set_option(handle, LDAP_OPT_PROTOCOL_VERSION, &version);
    failed |= ldap_set_option(handle, LDAP_OPT_REFERRALS, LDAP_OPT_OFF);
    failed |= ldap_set_option(handle, LDAP_OPT_RESTART, LDAP_OPT_ON);
    failed |= ldap_set_option(handle, LDAP_OPT_DEREF, &never);
    failed |= ldap_set_option(handle, LDAP_OPT_SIZELIMIT, &unlimited);
    failed |= ldap_set_option(handle, LDAP_OPT_TIMELIMIT, &unlimited);
    failed |= ldap_set_option(handle, LDAP_OPT_NETWORK_TIMEOUT, &network);
    if (host.security == Security::none || failed) return failed;

    const int demand = verify == Verify::never ? LDAP_OPT_X_TLS_NEVER : LDAP_OPT_X_TLS_DEMAND;
    const int tls_1_2 = LDAP_OPT_X_TLS_PROTOCOL_TLS1_2;
    const int client = 0;
    failed |= ldap_set_option(handle, LDAP_OPT_X_TLS_REQUIRE_CERT, &demand);
    failed |= ldap_set_option(handle, LDAP_OPT_X_TLS_PROTOCOL_MIN, &tls_1_2);
    if (!host.ca_file.empty())
        failed |= ldap_set_option(handle, LDAP_OPT_X_TLS_CACERTFILE, host.ca_file.c_str());
    // The library's first preparation for encryption is not made for several threads.
    static std::mutex one_at_a_time;
    const std::lock_guard lock(one_at_a_time);
    return failed | ldap_set_option(handle, LDAP_OPT_X_TLS_NEWCTX, &client);
}

// Asks the server for encryption, before it begins. False: `why` tells.
bool request_tls(LDAP* handle, const Deadline& deadline, Result& why) {
    int request = -1;
    const int sent = ldap_start_tls(handle, nullptr, nullptr, &request);
    if (sent != LDAP_SUCCESS) {
        why = client_result(handle, sent);
        return false;
    }
    const Message answer = next_message(handle, request, deadline, why);
    if (!answer) {
        if (why.code == result_code::timeout) why.message = "StartTLS was not answered";
        return false;
    }
    int code = LDAP_OTHER;
    char* message = nullptr;
    const int parsed = ldap_parse_result(handle, static_cast<LDAPMessage*>(answer.get()), &code,
                                         nullptr, &message, nullptr, nullptr, 0);
    if (parsed != LDAP_SUCCESS) {
        why = client_result(handle, parsed);
        return false;
    }
    why = {code, message ? message : "", {}};
    ldap_memfree(message);
    return code == LDAP_SUCCESS;
}

bool agree_on_encryption(LDAP* handle, const Deadline& deadline, Result& why) {
    wait_until(handle, deadline.at());
    const int installed = ldap_install_tls(handle);
    never_wait(handle);
    if (installed == LDAP_SUCCESS) return true;
    why = client_result(handle, installed);
    return false;
}

// Before its encryption, if any.
Handle connected(const ServerHost& host, const Limits& limits, const Deadline& deadline,
                 Verify verify, Result& why) {
    Socket socket(connected_socket(host, limits, deadline, why));
    if (socket.get() < 0) return nullptr;
    LDAP* made = nullptr;
    const int initialised = ldap_init_fd(socket.get(), LDAP_PROTO_TCP, host.url().c_str(), &made);
    Handle handle(made);
    if (initialised != LDAP_SUCCESS) {
        why = client_result(nullptr, initialised);
        return nullptr;
    }
    socket.detach();
    if (set_options(made, host, deadline, verify) != LDAP_OPT_SUCCESS ||
        !add_transport(made, longest_message)) {
        why = {result_code::local_error,
               host.ca_file.empty() ? "The connection cannot be set up."
                                    : "The certificates of '" + host.ca_file + "' cannot be used.",
               {}};
        return nullptr;
    }
    if (host.security == Security::start_tls && !request_tls(made, deadline, why)) return nullptr;
    return handle;
}

// The name that a host's certificate has to have. The library takes "localhost" for this machine's
// own.
std::string expected_name(const ServerHost& host) {
    std::array<char, 256> own{};
    const bool is_local = ascii::equal_ignoring_case(host.name, "localhost");
    return is_local && ::gethostname(own.data(), own.size() - 1) == 0 ? own.data() : host.name;
}

// The library keeps no certificate that it has refused. So a second connection fetches it, and is
// closed.
std::string refused_certificate(const ServerHost& host, const Limits& limits,
                                const Deadline& deadline) {
    Result ignored;
    const Handle handle = connected(host, limits, deadline, Verify::never, ignored);
    if (!handle || !agree_on_encryption(handle.get(), deadline, ignored)) return {};
    return server_certificate(handle.get());
}

// Nor does it say what it has against one.
std::string objection(const ServerHost& host, const Limits& limits, const Deadline& deadline) {
    const std::string certificate = refused_certificate(host, limits, deadline);
    return objection_to(certificate, expected_name(host), std::time(nullptr));
}

// False: `why` tells.
bool encrypt(LDAP* handle, const ServerHost& host, const Limits& limits, const Deadline& deadline,
             Result& why) {
    if (agree_on_encryption(handle, deadline, why)) return true;
    if (deadline.has_passed()) {
        why = {result_code::timeout, "encryption was not agreed on", {}};
    } else {
        const std::string reason = objection(host, limits, deadline);
        why = {result_code::connect_error,
               reason.empty() ? "Encryption cannot be agreed on." : reason,
               {}};
    }
    return false;
}

}  // namespace

void CloseHandle::operator()(::ldap* handle) const { ldap_unbind_ext(handle, nullptr, nullptr); }

std::string server_certificate(::ldap* handle) {
    berval certificate{};
    if (ldap_get_option(handle, LDAP_OPT_X_TLS_PEERCERT, &certificate) != LDAP_OPT_SUCCESS ||
        !certificate.bv_val)
        return {};
    const std::unique_ptr<void, decltype(&ber_memfree)> held(certificate.bv_val, ber_memfree);
    return {certificate.bv_val, certificate.bv_len};
}

void FreeMessage::operator()(void* message) const {
    ldap_msgfree(static_cast<LDAPMessage*>(message));
}

Result client_result(::ldap* handle, int library_code) {
    // The library's codes count down from -1 where RFC 1823's count up from 81.
    Result result{library_code < 0 ? result_code::other - library_code : library_code, {}, {}};
    char* message = nullptr;
    if (handle &&
        ldap_get_option(handle, LDAP_OPT_DIAGNOSTIC_MESSAGE, &message) == LDAP_OPT_SUCCESS &&
        message) {
        result.message = message;
        ldap_memfree(message);
    }
    return result;
}

Message next_message(::ldap* handle, int request, const Deadline& deadline, Result& why) {
    const milliseconds limit = deadline.left();
    const bool has_time = limit.count() > 0 && await_bytes(handle, limit);
    timeval timeout = timeval_of(has_time ? deadline.left() : milliseconds(0));
    LDAPMessage* message = nullptr;
    errno = 0;
    const int type = ldap_result(handle, request, LDAP_MSG_ONE, &timeout, &message);
    const bool is_too_long = errno == ERANGE;
    if (type > 0) return Message(message);
    if (type == 0) {
        ldap_abandon_ext(handle, request, nullptr, nullptr);
        why = {result_code::timeout, {}, {}};
        return nullptr;
    }
    int code = LDAP_SERVER_DOWN;
    ldap_get_option(handle, LDAP_OPT_RESULT_CODE, &code);
    why = client_result(handle, code);
    if (is_too_long)
        why = {result_code::decoding_error,
               "It is longer than " + std::to_string(longest_message >> 20) + " MiB.",
               {}};
    return nullptr;
}

Handle open_connection(const ServerHost& host, const Limits& limits, const Deadline& deadline,
                       Result& why) {
    // The library's own first use is not made for several threads.
    static std::once_flag initialised_once;
    std::call_once(initialised_once, [] {
        int version = 0;
        ldap_get_option(nullptr, LDAP_OPT_PROTOCOL_VERSION, &version);
    });
    Handle handle = connected(host, limits, deadline, Verify::demanded, why);
    if (handle && host.security != Security::none &&
        !encrypt(handle.get(), host, limits, deadline, why))
        return nullptr;
    return handle;
}

}  // namespace orvo::directory::ldap::detail

namespace orvo::directory::ldap {
namespace {

std::string text_of(const sockaddr* address, socklen_t size) {
    std::array<char, NI_MAXHOST> text{};
    const int failed =
        ::getnameinfo(address, size, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST);
    return failed ? std::string() : text.data();
}

}  // namespace

std::vector<std::string> find_addresses(const ServerHost& host, const Limits& limits, Result& why) {
    std::vector<std::string> texts;
    const auto found = detail::addresses_of(host, Deadline(limits.connect), why);
    for (const addrinfo* address = found.get(); address; address = address->ai_next)
        texts.push_back(text_of(address->ai_addr, address->ai_addrlen));
    return texts;
}

std::string reached_address(const ServerHost& host, const Limits& limits, Result& why) {
    const detail::Socket socket(
        detail::connected_socket(host, limits, Deadline(limits.connect), why));
    sockaddr_storage peer{};
    socklen_t size = sizeof peer;
    auto* address = reinterpret_cast<sockaddr*>(&peer);
    if (socket.get() < 0 || ::getpeername(socket.get(), address, &size) != 0) return {};
    return text_of(address, size);
}

std::optional<CertificateFault> certificate_fault(const ServerHost& host, const Limits& limits) {
    const std::string certificate =
        detail::refused_certificate(host, limits, Deadline(limits.connect));
    return fault_of(certificate, detail::expected_name(host), std::time(nullptr));
}

}  // namespace orvo::directory::ldap
