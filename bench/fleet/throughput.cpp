#include "bench/fleet/throughput.h"

#include <algorithm>
#include <cstdio>
#include <functional>

#include "bench/fleet/consumption.h"
#include "bench/fleet/loaded_fleet.h"
#include "bench/table.h"

namespace orvo::fleet {
namespace {

using Browsers = LoadedFleet::Browsers;

constexpr const char* guarded_page = "/account/";

std::string figure(double value, int digits) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

std::string milliseconds_each(double seconds, double count) {
    return figure(seconds / count * 1000, 2);
}

// A visit as a whole, without a change: so many requests.
int visit(web::Browser& browser, const std::string& user) {
    browser.cookies.clear();
    log_in(browser, user);
    open_page(browser, guarded_page);
    open_page(browser, "/account/logins.asp");
    log_out(browser, open_page(browser, "/"));
    return 6;
}

int login_alone(web::Browser& browser, const std::string& user) {
    browser.cookies.clear();
    log_in(browser, user);
    return 1;
}

int page_alone(web::Browser& browser, const std::string&) {
    open_page(browser, guarded_page);
    return 1;
}

FleetOptions fleet_of(std::size_t nodes, Store store) {
    FleetOptions options;
    options.nodes = nodes;
    options.store = store;
    return options;
}

void print_nodes(const ThroughputOptions& options, std::ostream& out) {
    out << "Visits by " << options.browsers
        << " browsers that never pause (login form, login, three pages, logout), and processor\n"
           "time per request in milliseconds. All parts and the browsers share the processors of "
           "this\nmachine.\n\n";
    Table table({"nodes", "requests/s", "nodes ms", "directory ms", "Redis ms", "haproxy ms"});
    for (std::size_t nodes = 1; nodes <= 3; ++nodes) {
        LoadedFleet fleet(fleet_of(nodes, Store::shared));
        fleet.measure(options.browsers, Seconds(1), Browsers::strangers, visit);
        const auto seen = fleet.measure(options.browsers, options.each, Browsers::strangers, visit);
        table.add({std::to_string(nodes), figure(seen.count / seen.seconds, 0),
                   milliseconds_each(seen.processor.nodes, seen.count),
                   milliseconds_each(seen.processor.directory, seen.count),
                   milliseconds_each(seen.processor.store, seen.count),
                   milliseconds_each(seen.processor.balancer, seen.count)});
    }
    table.print(out);
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// What one store costs, a value for each round, in milliseconds.
struct Costs {
    std::vector<double> login_of_node, login_of_store, login_of_directory;
    std::vector<double> page_of_node, page_of_store;
    std::vector<double> page_time;
};

void measure_round(LoadedFleet& fleet, const ThroughputOptions& options, Costs& costs) {
    const auto logins =
        fleet.measure(options.browsers, options.each, Browsers::strangers, login_alone);
    const auto pages =
        fleet.measure(options.browsers, options.each, Browsers::logged_in, page_alone);
    const auto alone = fleet.measure(1, options.each, Browsers::logged_in, page_alone);
    const auto add = [](std::vector<double>& to, double seconds, double count) {
        to.push_back(seconds / count * 1000);
    };
    add(costs.login_of_node, logins.processor.nodes, logins.count);
    add(costs.login_of_store, logins.processor.store, logins.count);
    add(costs.login_of_directory, logins.processor.directory, logins.count);
    add(costs.page_of_node, pages.processor.nodes, pages.count);
    add(costs.page_of_store, pages.processor.store, pages.count);
    costs.page_time.push_back(median(alone.times));
}

void print_costs(const ThroughputOptions& options, LoadedFleet& in_memory, LoadedFleet& shared,
                 std::ostream& out) {
    out << "\nOne node with its store in memory and one that shares it, in turns: medians of "
        << options.rounds
        << "\nrounds, in milliseconds. Processor time is each part's own; the time of a page is "
           "what a browser\nwaits that is alone. The page is "
        << guarded_page << ".\n\n";
    Costs of_memory, of_shared;
    for (int round = 0; round < options.rounds; ++round) {
        measure_round(in_memory, options, of_memory);
        measure_round(shared, options, of_shared);
    }
    Table table({"", "memory", "shared", "ratio"});
    const std::pair<const char*, std::vector<double> Costs::*> rows[] = {
        {"login: node", &Costs::login_of_node},           {"login: Redis", &Costs::login_of_store},
        {"login: directory", &Costs::login_of_directory}, {"page: node", &Costs::page_of_node},
        {"page: Redis", &Costs::page_of_store},           {"page: time", &Costs::page_time}};
    for (const auto& [what, member] : rows) {
        const double left = median(of_memory.*member), right = median(of_shared.*member);
        table.add({what, figure(left, 3), figure(right, 3),
                   left > 0 ? figure(right / left, 2) : std::string("-")});
    }
    table.print(out);
}

void print_sizes(const ThroughputOptions& options, LoadedFleet& in_memory, LoadedFleet& shared,
                 std::ostream& out) {
    const auto kilobytes_each = [&](LoadedFleet& fleet, const std::function<double()>& bytes) {
        // The first ones pay for what all need.
        fleet.log_in_many(options.logins / 10);
        const double before = bytes();
        fleet.log_in_many(options.logins);
        return (bytes() - before) / 1000 / static_cast<double>(options.logins);
    };
    Fleet& alone = in_memory.fleet();
    const double of_node =
        kilobytes_each(in_memory, [&] { return resident_bytes(alone.node(0).pid()); });
    const double of_store = kilobytes_each(shared, [&] { return shared.fleet().store_bytes(); });
    out << "\nMemory of " << options.logins
        << " more sessions, each with a login: " << figure(of_node, 1)
        << " kB each in the node that keeps them itself,\n"
        << figure(of_store, 1) << " kB each in Redis, which is " << figure(of_store * 100, 0)
        << " MB for 100,000.\n";
}

}  // namespace

void measure_throughput(const ThroughputOptions& options, std::ostream& out) {
    print_nodes(options, out);
    LoadedFleet in_memory(fleet_of(1, Store::memory)), shared(fleet_of(1, Store::shared));
    print_costs(options, in_memory, shared, out);
    print_sizes(options, in_memory, shared, out);
}

}  // namespace orvo::fleet
