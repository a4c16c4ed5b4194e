#include "bench/fleet/faults.h"

namespace orvo::fleet {
namespace {

using Way = FaultyProxy& (*)(Node&);

FaultyProxy& to_first_directory(Node& node) { return node.directory(0); }
FaultyProxy& to_store(Node& node) { return node.store(); }
FaultyProxy& to_second_directory(Node& node) { return node.directory(1); }

// Of a network: nothing comes through any more, and nobody is told.
void part(Fleet& fleet, Way way) {
    for (std::size_t i = 0; i < fleet.size(); ++i) way(fleet.node(i)).fall_silent();
}
void join(Fleet& fleet, Way way) {
    for (std::size_t i = 0; i < fleet.size(); ++i) way(fleet.node(i)).pass_on();
}
// Behind a proxy nobody listens any more, so nobody listens at the proxy.
void refuse(Fleet& fleet, Way way) {
    for (std::size_t i = 0; i < fleet.size(); ++i) way(fleet.node(i)).refuse();
}

// Each node ends as its service manager would end it, and serves again before the next one's turn.
void restart_all(Fleet& fleet) {
    for (std::size_t i = 0; i < fleet.size(); ++i) {
        fleet.node(i).stop();
        fleet.node(i).start();
        fleet.balancer().wait_until_it_serves(i);
    }
}

// The kinds of parts take turns, so that each has time to recover before it is hit again.
std::vector<Fault> faults_of_nodes() {
    return {
        {"node 1 frozen", Part::node, [](Fleet& fleet) { fleet.node(0).freeze(); },
         [](Fleet& fleet) { fleet.node(0).go_on(); }},
        {"node 2 killed", Part::node, [](Fleet& fleet) { fleet.node(1).kill(); },
         [](Fleet& fleet) { fleet.node(1).start(); }},
        {"node 3 restarted", Part::node,
         [](Fleet& fleet) {
             fleet.node(2).stop();
             fleet.node(2).start();
         },
         [](Fleet&) {}, true},
        {"node 1 cut off from the balancer", Part::node,
         [](Fleet& fleet) { fleet.node(0).front().fall_silent(); },
         [](Fleet& fleet) { fleet.node(0).front().pass_on(); }},
        {"node 2 cut off from directory 1", Part::directory,
         [](Fleet& fleet) { fleet.node(1).directory(0).fall_silent(); },
         [](Fleet& fleet) { fleet.node(1).directory(0).pass_on(); }},
    };
}

std::vector<Fault> faults_of_directories() {
    return {
        {"directory 1 frozen", Part::directory, [](Fleet& fleet) { fleet.directory()[0].pause(); },
         [](Fleet& fleet) { fleet.directory()[0].resume(); }},
        {"directory 1 killed", Part::directory,
         [](Fleet& fleet) {
             fleet.directory()[0].kill();
             refuse(fleet, to_first_directory);
         },
         [](Fleet& fleet) {
             fleet.directory()[0].start();
             join(fleet, to_first_directory);
         }},
        {"directory 1 restarted", Part::directory,
         [](Fleet& fleet) {
             fleet.directory()[0].stop();
             refuse(fleet, to_first_directory);
             fleet.directory()[0].start();
             join(fleet, to_first_directory);
         },
         [](Fleet&) {}, true},
        {"directory 1 cut off from all nodes", Part::directory,
         [](Fleet& fleet) { part(fleet, to_first_directory); },
         [](Fleet& fleet) { join(fleet, to_first_directory); }},
        {"directory 2 killed", Part::directory,
         [](Fleet& fleet) {
             fleet.directory()[1].kill();
             refuse(fleet, to_second_directory);
         },
         [](Fleet& fleet) {
             fleet.directory()[1].start();
             join(fleet, to_second_directory);
         }},
    };
}

std::vector<Fault> faults_of_store() {
    const auto die = [](Fleet& fleet) {
        fleet.store().kill();
        refuse(fleet, to_store);
    };
    const auto return_to_life = [](Fleet& fleet) {
        fleet.store().start();
        join(fleet, to_store);
    };
    return {
        {"Redis frozen", Part::store, [](Fleet& fleet) { fleet.store().freeze(); },
         [](Fleet& fleet) { fleet.store().go_on(); }},
        {"Redis killed", Part::store, die, return_to_life},
        {"Redis restarted", Part::store,
         [return_to_life](Fleet& fleet) {
             fleet.store().stop();
             refuse(fleet, to_store);
             return_to_life(fleet);
         },
         [](Fleet&) {}, true},
        {"Redis cut off from all nodes", Part::store, [](Fleet& fleet) { part(fleet, to_store); },
         [](Fleet& fleet) { join(fleet, to_store); }},
        {"node 3 cut off from Redis", Part::store,
         [](Fleet& fleet) { fleet.node(2).store().fall_silent(); },
         [](Fleet& fleet) { fleet.node(2).store().pass_on(); }},
    };
}

std::vector<Fault> faults_of_balancer() {
    return {
        {"haproxy frozen", Part::balancer, [](Fleet& fleet) { fleet.balancer().freeze(); },
         [](Fleet& fleet) { fleet.balancer().go_on(); }},
        {"haproxy killed", Part::balancer, [](Fleet& fleet) { fleet.balancer().kill(); },
         [](Fleet& fleet) { fleet.balancer().start(); }},
    };
}

}  // namespace

std::vector<Fault> every_fault() {
    std::vector<Fault> all;
    const auto nodes = faults_of_nodes(), directories = faults_of_directories(),
               stores = faults_of_store(), balancers = faults_of_balancer();
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        all.push_back(nodes[i]);
        all.push_back(directories[i]);
        all.push_back(stores[i]);
        if (i < balancers.size()) all.push_back(balancers[i]);
    }
    all.push_back(
        {"rolling restart of the nodes", Part::all_nodes, restart_all, [](Fleet&) {}, true});
    return all;
}

std::vector<Fault> brief_faults() {
    std::vector<Fault> chosen;
    for (Fault& fault : every_fault())
        if (fault.name == "node 2 killed" || fault.name == "directory 1 frozen" ||
            fault.name == "Redis frozen" || fault.part == Part::all_nodes)
            chosen.push_back(std::move(fault));
    return chosen;
}

}  // namespace orvo::fleet
