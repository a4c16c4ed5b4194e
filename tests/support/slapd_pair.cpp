#include "tests/support/slapd_pair.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <vector>

namespace orvo {
namespace {

using Clock = std::chrono::steady_clock;

// A busy machine takes its time to pass on all entries.
constexpr auto first_patience = std::chrono::seconds(120);
const std::string place_of_replication = "# (replication)";

// Replaces a text that has to be there, once.
std::string replaced(std::string text, const std::string& what, const std::string& with) {
    const std::size_t place = text.find(what);
    if (place == std::string::npos) throw std::runtime_error("no " + what);
    return text.replace(place, what.size(), with);
}

// Where the other server is, and its root's password, are known only when both have been made.
std::string configuration(std::size_t server, const std::string& more) {
    return "moduleload syncprov\nserverID " + std::to_string(server + 1) + "\n" +
           place_of_replication + "\n" + more + "overlay syncprov\n";
}

// From the next start on `server` follows what `leader` does.
void follow(const PrivateSlapd& server, const PrivateSlapd& leader) {
    const auto file = server.folder() / "slapd.conf";
    const std::string text =
        replaced(content_of(file), place_of_replication,
                 "syncrepl rid=001 provider=" + leader.url() +
                     " type=refreshAndPersist searchbase=o=Shop bindmethod=simple binddn=" +
                     leader.root_dn() + " credentials=" + leader.root_password() +
                     " retry=\"1 +\" network-timeout=2 timeout=5\nmultiprovider on");
    if (!(std::ofstream(file) << text << std::flush))
        throw std::runtime_error("cannot write " + file.string());
}

}  // namespace

std::string sample_site(const std::string& servers) {
    const std::string text =
        replaced(content_of(std::filesystem::path(ORVO_SOURCE_DIR) / "examples/site.ini"),
                 "OrvoDirectory.Embedded", "OrvoDirectory.Ldap");
    return replaced(text, "LDAPServer=@SERVER@", "LDAPServer=" + servers);
}

SlapdPair::SlapdPair(SlapdOptions options) {
    const std::string more = options.config;
    for (std::size_t server = 0; server < servers_.size(); ++server) {
        options.config = configuration(server, more);
        servers_[server] = std::make_unique<PrivateSlapd>(options);
        options.shop = folder_.write("empty.ldif", "");
        options.ldif = {};
    }
    for (const auto& server : servers_) server->stop();
    follow(*servers_[0], *servers_[1]);
    follow(*servers_[1], *servers_[0]);
    for (const auto& server : servers_) server->start();
    if (!settle(first_patience)) throw std::runtime_error("the two servers do not replicate");
}

bool SlapdPair::settle(std::chrono::seconds patience) const {
    const auto end = Clock::now() + patience;
    std::vector<std::string> before;
    while (Clock::now() < end) {
        std::array<std::vector<std::string>, 2> known;
        for (const int server : {0, 1}) {
            const auto probe = look_into(server);
            std::vector<std::string>& changes = known[static_cast<std::size_t>(server)];
            // The server that begins empty has no such entry yet.
            const bool is_there = !probe->find("o=Shop", "(o=Shop)").empty();
            if (is_there) changes = probe->values("o=Shop", "contextCSN");
            std::sort(changes.begin(), changes.end());
        }
        // Twice the same: what is under way at the first look is seen at the second.
        const bool is_equal = known[0] == known[1] && !known[0].empty();
        if (is_equal && known[0] == before) return true;
        before = is_equal ? known[0] : std::vector<std::string>();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    return false;
}

std::unique_ptr<LdapProbe> SlapdPair::look_into(int server) const {
    const PrivateSlapd& slapd = (*this)[server];
    return std::make_unique<LdapProbe>(slapd.url(), slapd.root_dn(), slapd.root_password());
}

}  // namespace orvo
