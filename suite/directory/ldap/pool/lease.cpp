#include "suite/directory/ldap/pool/lease.h"

#include <utility>

namespace orvo::directory::ldap {
namespace {

// So long after an answer a connection is taken to be open without looking.
constexpr std::chrono::milliseconds surely_open{100};

}  // namespace

Lease::Lease(ConnectionPool& pool, ConnectionSetRef set) : pool_(pool), set_(std::move(set)) {
    pool_.tidy(*set_);
    acquire_place();
    settings_ = pool_.settings();
}

Lease::~Lease() {
    if (has_place_) release_place();
}

void Lease::acquire_place() {
    generation_ = set_->acquire_place(pool_.waits());
    has_place_ = true;
}

void Lease::release_place() {
    connection_.reset();
    has_place_ = false;
    set_->release_place();
}

bool Lease::take_idle(const ServerRef& server, Care care) {
    const auto now = pool_.clock().now();
    while ((connection_ = set_->take_idle(server, settings_, now))) {
        const bool is_fresh = care == Care::usual && now - connection_->used < surely_open;
        if (is_fresh || connection_->session.seems_open()) return true;
    }
    return false;
}

bool Lease::take_from_others(const ServerRef& server) {
    while ((connection_ = pool_.take_from_others(server)))
        if (connection_->session.seems_open()) return true;
    return false;
}

bool Lease::take_checked(const ServerRef& server) {
    while ((connection_ = pool_.take_checked(*set_, server, generation_)))
        if (connection_->session.seems_open()) return true;
    return false;
}

void Lease::release() {
    if (!connection_) return;
    has_place_ = false;
    const bool is_idle =
        set_->release(std::move(*connection_), generation_, settings_, pool_.clock().now());
    connection_.reset();
    if (is_idle) pool_.keep(set_);
}

}  // namespace orvo::directory::ldap
