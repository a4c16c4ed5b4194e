#include "suite/directory/ldap/provider/client.h"

#include <algorithm>

#include "suite/directory/ldap/pool/probe.h"

namespace orvo::directory::ldap {

Client::Client(const Clock& clock, Probing probing)
    : servers_(
          clock,
          [this](const ServerHost& host) {
              Limits limits = pool_.settings().limits;
              limits.answer = std::max(limits.answer / 2, std::chrono::milliseconds(1));
              return probe(host, limits);
          },
          [this, probing] {
              if (probing == Probing::by_thread) prober_.wake();
          }),
      pool_(clock, writes_, servers_),
      cache_(clock, writes_),
      prober_([this] { return servers_.probe_due(pool_.settings().failback_after); }) {}

Client& Client::of_process() {
    static Client made(Clock::steady(), Probing::by_thread);
    return made;
}

}  // namespace orvo::directory::ldap
