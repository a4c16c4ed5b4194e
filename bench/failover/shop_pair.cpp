#include "bench/failover/shop_pair.h"

#include <filesystem>
#include <stdexcept>

namespace orvo::failover {
namespace {

const std::filesystem::path source = ORVO_SOURCE_DIR;
constexpr auto late = std::chrono::seconds(2);

SlapdOptions options(const std::filesystem::path& shop) {
    SlapdOptions options;
    options.config =
        "moduleload ppolicy\noverlay ppolicy\nppolicy_default cn=default,ou=Policies,o=Shop\n"
        "limits dn.exact=cn=orvo-service,ou=Services,o=Shop size=unlimited\n";
    options.shop = shop;
    options.ldif = {source / "bench/failover/password-policy.ldif"};
    return options;
}

}  // namespace

const char* name_of(Fault fault) {
    for (const auto& [one, name] : faults)
        if (one == fault) return name;
    throw std::logic_error("an unknown fault");
}

ShopPair::ShopPair(Sightings& sightings)
    : servers_(options(site_.write(
          "shop.ldif", output_of({source / "examples/directory/make-shop", "--users", "1000"})))) {
    std::string both;
    for (const int server : {preferred, other}) {
        proxies_.push_back(std::make_unique<FaultyProxy>(
            servers_[server].port(), [&sightings, server]() -> FaultyProxy::Listener {
                return [reader = RequestReader(sightings, server)](std::string_view bytes) mutable {
                    reader.take(bytes);
                };
            }));
        both += (server == preferred ? "" : " ") + proxies_.back()->server();
    }
    site_.write("site.ini", sample_site(both));
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
            return servers_[preferred].pause();
        case Fault::kill:
            servers_[preferred].kill();
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
    if (fault == Fault::freeze) servers_[preferred].resume();
    if (fault == Fault::kill) servers_[preferred].start();
    proxies_[preferred]->pass_on();
}

}  // namespace orvo::failover
