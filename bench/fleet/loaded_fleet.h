#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "bench/fleet/fleet.h"
#include "bench/fleet/users.h"
#include "tests/host/web/browser.h"

namespace orvo::fleet {

using Seconds = std::chrono::duration<double>;

// Processor time of each kind of part, in seconds.
struct Consumed {
    double nodes = 0;
    double directory = 0;
    double store = 0;
    double balancer = 0;
};

// A fleet whose browsers do one thing again and again, without a pause. An answer that is not what
// it should be raises std::runtime_error.
class LoadedFleet {
public:
    // What is done each time; answers how often that counts.
    using Work = std::function<int(web::Browser&, const std::string& user)>;
    // Of those that are to be logged in each one logs in before anything is measured.
    enum class Browsers { strangers, logged_in };

    struct Measured {
        double count = 0;    // of what was done
        double seconds = 0;  // by the clock
        Consumed processor = {};
        std::vector<double> times = {};  // of each time, in milliseconds
    };

    explicit LoadedFleet(const FleetOptions& options);

    Measured measure(std::size_t browsers, Seconds length, Browsers kind, const Work& work);
    // So many logins that nobody ends.
    void log_in_many(std::size_t logins);
    Fleet& fleet() { return fleet_; }

private:
    Consumed consumed();

    Fleet fleet_;
    Users users_;
};

// Each of these is one thing to be done, as a browser does it.
void log_in(web::Browser& browser, const std::string& user);
// Answers the token of the page's forms.
std::string open_page(web::Browser& browser, const std::string& path);
void log_out(web::Browser& browser, const std::string& token);

}  // namespace orvo::fleet
