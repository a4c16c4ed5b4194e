#include "bench/failover/shop_pair.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace orvo::failover {
namespace {

const std::filesystem::path source = ORVO_SOURCE_DIR;
const std::string place_of_replication = "# (replication)";
constexpr auto late = std::chrono::seconds(2);

// Where the other server is, and its root's password, are known only when both have been made.
SlapdOptions options(int server) {
    SlapdOptions options;
    options.config = "moduleload ppolicy\nmoduleload syncprov\nserverID " +
                     std::to_string(server + 1) + "\n" + place_of_replication +
                     "\noverlay ppolicy\nppolicy_default cn=default,ou=Policies,o=Shop\n"
                     "overlay syncprov\n"
                     "limits dn.exact=cn=orvo-service,ou=Services,o=Shop size=unlimited\n";
    if (server == preferred) options.ldif = {source / "bench/failover/password-policy.ldif"};
    return options;
}

void write(const std::filesystem::path& file, const std::string& content) {
    if (!(std::ofstream(file) << content << std::flush))
        throw std::runtime_error("cannot write " + file.string());
}

std::string replaced(std::string text, const std::string& what, const std::string& with) {
    const std::size_t place = text.find(what);
    if (place == std::string::npos) throw std::runtime_error("no " + what);
    return text.replace(place, what.size(), with);
}

// From the next start on `server` follows what `leader` does.
void follow(const PrivateSlapd& server, const PrivateSlapd& leader) {
    const auto file = server.folder() / "slapd.conf";
    write(file, replaced(content_of(file), place_of_replication,
                         "syncrepl rid=001 provider=" + leader.url() +
                             " type=refreshAndPersist searchbase=o=Shop bindmethod=simple"
                             " binddn=" +
                             leader.root_dn() + " credentials=" + leader.root_password() +
                             " retry=\"1 +\" network-timeout=2 timeout=5\n"
                             "multiprovider on"));
}

}  // namespace

const char* name_of(Fault fault) {
    for (const auto& [one, name] : faults)
        if (one == fault) return name;
    throw std::logic_error("an unknown fault");
}

ShopPair::ShopPair(Sightings& sightings) {
    // The second one begins empty and gets everything from the first.
    const auto shop = site_.write(
        "shop.ldif", output_of({source / "examples/directory/make-shop", "--users", "1000"}));
    const auto empty = site_.write("empty.ldif", "");
    for (const int server : {preferred, other}) {
        SlapdOptions wanted = options(server);
        wanted.shop = server == preferred ? shop : empty;
        servers_.push_back(std::make_unique<PrivateSlapd>(std::move(wanted)));
    }
    for (const auto& server : servers_) server->stop();
    follow(*servers_[preferred], *servers_[other]);
    follow(*servers_[other], *servers_[preferred]);
    for (const auto& server : servers_) server->start();
    if (!settle()) throw std::runtime_error("the two servers do not replicate");

    std::string both;
    for (const int server : {preferred, other}) {
        proxies_.push_back(std::make_unique<FaultyProxy>(
            std::stoi(servers_[static_cast<std::size_t>(server)]->server().substr(10)),
            [&sightings, server]() -> FaultyProxy::Listener {
                return [reader = RequestReader(sightings, server)](std::string_view bytes) mutable {
                    reader.take(bytes);
                };
            }));
        both += (server == preferred ? "" : " ") + proxies_.back()->server();
    }
    const std::string site = replaced(content_of(source / "examples/site.ini"),
                                      "OrvoDirectory.Embedded", "OrvoDirectory.Ldap");
    site_.write("site.ini", replaced(site, "LDAPServer=@SERVER@", "LDAPServer=" + both));
    std::filesystem::copy(source / "examples/Config", site_.path() / "Config");
}

std::vector<std::string> ShopPair::users() const {
    std::vector<std::string> names;
    for (const std::string& dn :
         look_into(preferred)->find("ou=Users,o=Shop", "(&(OrvoUserType=1)(ProfileCN=*))")) {
        const std::string name = dn.substr(3, dn.find(',') - 3);
        if (name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789") == std::string::npos)
            names.push_back(name);
    }
    return names;
}

void ShopPair::inject(Fault fault) {
    switch (fault) {
        case Fault::freeze:
            return servers_[preferred]->pause();
        case Fault::kill:
            servers_[preferred]->kill();
            return proxies_[preferred]->refuse();
        case Fault::silence:
            return proxies_[preferred]->fall_silent();
        case Fault::refused:
            return proxies_[preferred]->refuse_and_reset();
        case Fault::slow:
            return proxies_[preferred]->slow_down(late);
    }
}

void ShopPair::heal(Fault fault) {
    if (fault == Fault::freeze) servers_[preferred]->resume();
    if (fault == Fault::kill) servers_[preferred]->start();
    proxies_[preferred]->pass_on();
}

bool ShopPair::settle() {
    const auto end = Clock::now() + std::chrono::seconds(30);
    std::vector<std::string> before;
    while (Clock::now() < end) {
        std::vector<std::vector<std::string>> known;
        for (const int server : {preferred, other}) {
            const auto probe = look_into(server);
            // The server that begins empty has no such entry yet.
            const bool is_there = !probe->find("o=Shop", "(o=Shop)").empty();
            known.push_back(is_there ? probe->values("o=Shop", "contextCSN")
                                     : std::vector<std::string>());
            std::sort(known.back().begin(), known.back().end());
        }
        // Twice the same: what is under way at the first look is seen at the second.
        const bool is_equal = known[preferred] == known[other] && !known[other].empty();
        if (is_equal && known[other] == before) return true;
        before = is_equal ? known[other] : std::vector<std::string>();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    return false;
}

std::unique_ptr<LdapProbe> ShopPair::look_into(int server) const {
    const PrivateSlapd& slapd = *servers_[static_cast<std::size_t>(server)];
    return std::make_unique<LdapProbe>(slapd.url(), slapd.root_dn(), slapd.root_password());
}

}  // namespace orvo::failover
