#include "bench/fleet/consumption.h"

#include <unistd.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace orvo::fleet {
namespace {

std::ifstream opened(pid_t process, const char* name) {
    std::ifstream file("/proc/" + std::to_string(process) + '/' + name);
    if (!file) throw std::runtime_error("no process " + std::to_string(process));
    return file;
}

}  // namespace

double processor_seconds(const std::vector<pid_t>& processes) {
    double ticks = 0;
    for (const pid_t process : processes) {
        std::string line;
        std::getline(opened(process, "stat"), line);
        // Behind the program's name in parentheses, which may hold anything, comes the third field;
        // the 14th and the 15th are the time in user and in system mode.
        std::istringstream fields(line.substr(line.rfind(')') + 1));
        std::string skipped;
        for (int field = 3; field < 14; ++field) fields >> skipped;
        double user = 0, system = 0;
        fields >> user >> system;
        ticks += user + system;
    }
    return ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double resident_bytes(pid_t process) {
    double all = 0, resident = 0;
    opened(process, "statm") >> all >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

}  // namespace orvo::fleet
