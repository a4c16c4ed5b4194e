#pragma once

#include <cstdlib>
#include <memory>
#include <string>

#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "tests/support/slapd.h"
#include "tests/support/temp_folder.h"

namespace orvo {

// A server with a sample shop of so many users, the one of the last call; the service account may
// read all of them in one answer. Another number ends the former server.
inline PrivateSlapd& shop_of(std::int64_t users) {
    static std::unique_ptr<PrivateSlapd> slapd;
    static std::int64_t its_users = 0;
    if (slapd && its_users == users) return *slapd;
    slapd.reset();
    const TempFolder folder;
    const auto file =
        folder.write("shop.ldif", output_of({ORVO_SOURCE_DIR "/examples/directory/make-shop",
                                             "--users", std::to_string(users)}));
    slapd = std::make_unique<PrivateSlapd>(
        SlapdOptions{.config = "limits dn.exact=cn=orvo-service,ou=Services,o=Shop size=unlimited",
                     .shop = file});
    its_users = users;
    return *slapd;
}

// The users container of that shop, bound with the service account. The settings of a thread are
// those that it loads first, so each has a thread of its own (see Crew).
inline Object bound_members(const PrivateSlapd& shop) {
    const Object members = create_object(u"OrvoMembership.Members");
    late::call(members, u"setServerInfo", {from_utf8(shop.site_ini().string())});
    late::call(members, u"BindAs",
               {from_utf8(shop.service_dn()), from_utf8(shop.service_password())});
    return members;
}

// Whether this is a run that only shows that the benchmarks work.
inline bool is_brief() { return std::getenv("ORVO_BENCH_BRIEF") != nullptr; }

}  // namespace orvo
