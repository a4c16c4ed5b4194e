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

}  // namespace

Fleet::Fleet(const FleetOptions& options)
    : components_("ORVO_COMPONENTS", folder_.path() / "components"),
      directory_(directory_options(folder_, options.users)) {
    std::filesystem::create_directory(folder_.path() / "components");
    output_of({bin + "/orvo-register", bin + "/OrvoMembership.so", bin + "/OrvoSuite.so",
               bin + "/OrvoPlatform.so"});
    std::vector<int> fronts;
    for (std::size_t i = 0; i < options.nodes; ++i) {
        nodes_.push_back(std::make_unique<Node>(
            folder_.path() / ("node" + std::to_string(i + 1)),
            std::vector<int>{directory_[0].port(), directory_[1].port()}, std::nullopt));
        nodes_.back()->configure({});
        nodes_.back()->start();
        fronts.push_back(nodes_.back()->front().port());
    }
    balancer_ = std::make_unique<Balancer>(folder_.path(), fronts, true);
}

std::vector<int> Fleet::node_ports() const {
    std::vector<int> ports;
    for (const auto& node : nodes_) ports.push_back(node->port());
    return ports;
}

}  // namespace orvo::fleet
