#include "host/admin/process/running_host.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "host/admin/common/exit_codes.h"
#include "host/admin/common/output.h"

namespace orvo::admin {
namespace {

sockaddr_un address_of(const std::filesystem::path& file) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    constexpr std::size_t longest = sizeof address.sun_path - 1;
    if (file.native().size() > longest)
        throw std::runtime_error(file.string() + ": a socket's name has at most " +
                                 std::to_string(longest) + " octets");
    file.native().copy(address.sun_path, longest);
    return address;
}

timeval in_seconds(std::chrono::milliseconds time) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    const std::chrono::microseconds rest = time - seconds;
    return {.tv_sec = seconds.count(), .tv_usec = rest.count()};
}

// Nobody listens there.
class NoHost : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Connection {
public:
    Connection(const std::filesystem::path& file, std::chrono::milliseconds patience)
        : file_(file), descriptor_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        if (descriptor_ == -1) raise_unreachable(errno);
        // Where its queue is full, connecting waits as sending does.
        const timeval limit = in_seconds(patience);
        for (const int direction : {SO_SNDTIMEO, SO_RCVTIMEO})
            setsockopt(descriptor_, SOL_SOCKET, direction, &limit, sizeof limit);
    }
    ~Connection() { close(descriptor_); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void open() const {
        const sockaddr_un address = address_of(file_);
        if (connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
            return;
        if (errno == EAGAIN) raise_silent();
        raise_unreachable(errno);
    }
    std::string answer_to(const std::string& request) const {
        if (send(descriptor_, request.data(), request.size(), MSG_NOSIGNAL) !=
            static_cast<ssize_t>(request.size()))
            return {};
        std::string answer;
        char part[4096];
        ssize_t size;
        while ((size = recv(descriptor_, part, sizeof part, 0)) > 0)
            answer.append(part, static_cast<std::size_t>(size));
        if (size < 0 && errno == EAGAIN) raise_silent();
        return answer;
    }

private:
    [[noreturn]] void raise_unreachable(int error) const {
        const std::string text =
            file_.string() + ": no host answers (" + std::generic_category().message(error) +
            "); name its AdminSocket with --socket, and be root or the user that it runs as";
        if (error == ENOENT || error == ECONNREFUSED) throw NoHost(text);
        throw std::runtime_error(text);
    }
    [[noreturn]] void raise_silent() const {
        throw std::runtime_error(
            file_.string() + ": the host does not answer; see whether its process stands still");
    }

    const std::filesystem::path& file_;
    const int descriptor_;
};

std::vector<std::string> cells(const std::string& line) {
    std::vector<std::string> cells;
    for (std::size_t begin = 0; begin <= line.size();) {
        const std::size_t end = std::min(line.find('\t', begin), line.size());
        cells.push_back(line.substr(begin, end - begin));
        begin = end + 1;
    }
    return cells;
}

// Where each of the chosen columns is in the host's rows.
std::vector<std::size_t> places_of(const HostTable& table, const std::vector<std::string>& chosen) {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; chosen.empty() && i < table.columns.size(); ++i) places.push_back(i);
    for (const std::string& name : chosen) {
        const auto found = std::ranges::find(table.columns, name);
        if (found == table.columns.end()) throw Misuse("there is no column \"" + name + "\"");
        places.push_back(static_cast<std::size_t>(found - table.columns.begin()));
    }
    return places;
}

}  // namespace

HostTable ask_host(const std::filesystem::path& socket, const std::string& request,
                   std::chrono::milliseconds patience) {
    const Connection connection(socket, patience);
    connection.open();
    std::istringstream answer(connection.answer_to(request + '\n'));
    std::string line;
    std::getline(answer, line);
    if (line != "ok")
        throw std::runtime_error(socket.string() + ": the host " +
                                 (line.empty() ? "gives no answer" : line));
    HostTable table;
    std::getline(answer, line);
    table.columns = cells(line);
    while (std::getline(answer, line)) {
        table.rows.push_back(cells(line));
        table.rows.back().resize(table.columns.size());
    }
    return table;
}

std::optional<HostTable> try_ask_host(const std::filesystem::path& socket,
                                      const std::string& request) {
    try {
        return ask_host(socket, request);
    } catch (const NoHost&) {
        return std::nullopt;
    }
}

int show_pool(const HostRequest& request) {
    if (request.rows.format == Format::ldif)
        throw Misuse("connections are no entries: --format is table, csv or json");
    const HostTable table =
        ask_host(request.socket, request.about_servers ? "servers" : "connections");
    const auto places = places_of(table, request.rows.columns);
    std::vector<Column> heads;
    for (const std::size_t place : places) heads.push_back({table.columns[place]});
    const auto writer =
        make_row_writer(request.rows.format, std::cout, std::move(heads), Terminal::of_output());
    for (const auto& cells : table.rows) {
        OutputRow row;
        for (const std::size_t place : places)
            row.values.push_back(cells[place].empty() ? std::vector<std::string>()
                                                      : std::vector{cells[place]});
        writer->write(row);
    }
    writer->finish();
    return done;
}

int clear_cache(const HostRequest& request) {
    const HostTable table = ask_host(request.socket, "clear cache");
    if (!request.common.is_quiet && !table.rows.empty())
        put(std::cout, "The host has forgotten " + table.rows.front().front() + " entries.\n");
    return done;
}

}  // namespace orvo::admin
