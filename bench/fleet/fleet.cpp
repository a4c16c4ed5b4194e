#include "bench/fleet/fleet.h"

namespace orvo::fleet {
namespace {

const std::filesystem::path source = ORVO_SOURCE_DIR;
const std::string bin = ORVO_BIN;

SlapdOptions directory_options(const TempFolder& folder, int users) {
    SlapdOptions options;
    options.shop = folder.write("shop.ldif", output_of({source / "examples/directory/make-shop",
                                                        "--users", std::to_string(users)}));
    options.config = "limits dn.exact=cn=orvo-service,ou=Services,o=Shop size=unlimited\n";
    return options;
}

// The number behind a name in what Redis tells of itself.
double figure_in(const std::string& text, const std::string& name) {
    const std::size_t place = text.find(name);
    if (place == std::string::npos) throw std::runtime_error("Redis tells no " + name);
    return std::stod(text.substr(place + name.size()));
}

}  // namespace

Fleet::Fleet(const FleetOptions& options)
    : components_("ORVO_COMPONENTS", folder_.path() / "components"),
      directory_(directory_options(folder_, options.users)) {
    std::filesystem::create_directory(folder_.path() / "components");
    output_of({bin + "/orvo-register", bin + "/OrvoMembership.so", bin + "/OrvoSuite.so",
               bin + "/OrvoPlatform.so"});
    if (options.store == Store::shared)
        store_ = std::make_unique<RedisServer>(RedisOptions{.keeps_its_data = true});
    std::vector<int> fronts;
    for (std::size_t i = 0; i < options.nodes; ++i) {
        nodes_.push_back(
            std::make_unique<Node>(folder_.path() / ("node" + std::to_string(i + 1)),
                                   std::vector<int>{directory_[0].port(), directory_[1].port()},
                                   store_ ? std::optional(store_->port()) : std::nullopt));
        nodes_.back()->configure(lines_of(*nodes_.back()));
        nodes_.back()->start();
        fronts.push_back(nodes_.back()->front().port());
    }
    balancer_ = std::make_unique<Balancer>(folder_.path(), fronts, !store_);
}

std::vector<int> Fleet::node_ports() const {
    std::vector<int> ports;
    for (const auto& node : nodes_) ports.push_back(node->port());
    return ports;
}

NodeLines Fleet::lines_of(Node& node) const {
    NodeLines lines{{}, "TrustedProxies=127.0.0.1\n"};
    if (store_) lines.site = store_->site_section("redis://" + node.store().server());
    // All browsers have one address, and each visit in eight begins with a wrong password.
    lines.site += "\n[THROTTLE]\nAddressAttempts=1000000\n";
    return lines;
}

std::vector<pid_t> Fleet::node_processes() const {
    std::vector<pid_t> processes;
    for (const auto& node : nodes_) processes.push_back(node->pid());
    return processes;
}

std::vector<pid_t> Fleet::directory_processes() const {
    std::vector<pid_t> processes;
    for (const int server : {0, 1})
        processes.push_back(std::stoi(content_of(directory_[server].folder() / "pid")));
    return processes;
}

std::vector<pid_t> Fleet::store_processes() const {
    if (!store_) return {};
    return {static_cast<pid_t>(figure_in(store_->ask({"INFO", "server"}), "process_id:"))};
}

double Fleet::store_bytes() const {
    return figure_in(store_->ask({"INFO", "memory"}), "used_memory:");
}

}  // namespace orvo::fleet
