// The embedded directory beside slapd, which has the same data: the raw LDAP client on a kept
// connection, our LDAP provider with its pool, and the embedded provider, called by slot in one
// thread of one process. Rounds alternate. "raw_us" and "ldap_us" are what the others need for one
// job, "rate_to_raw" and "rate_to_ldap" how many jobs the embedded directory does in the time of
// one of theirs, "own_cpu_us" this process's processor time for one. 1,000 and 100,000 users; with
// ORVO_BENCH_MILLION in the environment 1,000,000 as well; a brief run has 1,000 alone.
//
//   password check    the embedded directory computes yescrypt, slapd compares a salted SHA-1.
//                     "hash_us" is what the hash alone costs, in the same round, "rest_us" what the
//                     check costs beside it (medians); the rates go by the rest
//   bind and read     an entry bound with the service account's rights, and an attribute read; raw:
//                     authenticates and reads the entry
//   read              the same; raw: reads the entry and no more
//   page of 50        the first, and the one behind the ten-thousandth user (of fewer: the middle
//                     one), in the order of lists. No server has that order: our LDAP provider
//                     reads all users for it. Raw: any 50 users, in no order
//   1,000 rows        in order; raw: any 1,000
//   role              nobody has it, ten have it, many do (up to 1,000 rows); raw: up to 1,000 rows
//   create, delete    a user without a password, which would be the hash's row again. The embedded
//                     directory waits for the disk twice. slapd does not wait ("dbnosync"), or, in
//                     the last row, does
//
// "file_MiB" is the store's file, "peak_MiB" the largest memory of this process while the embedded
// directory worked, with all that is in it from the rows before.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <map>
#include <numeric>

#include "bench/big_shop.h"
#include "bench/counted_work.h"
#include "bench/peak_memory.h"
#include "bench/raw_search.h"
#include "bench/raw_writes.h"
#include "bench/twin_shop.h"
#include "component/provider/directory_contract.h"
#include "platform/interfaces/call.h"
#include "platform/interfaces/hosted.h"
#include "platform/objects/dictionary/dictionary.h"
#include "platform/objects/recordset/record_set_contract.h"
#include "suite/directory/policy/stored_password.h"

namespace orvo {
namespace {

using std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

TwinShop& twin_shop(std::int64_t users) {
    static std::unique_ptr<TwinShop> shop;
    static std::int64_t its_users = 0;
    if (its_users != users) {
        shop.reset();
        shop = std::make_unique<TwinShop>(users);
        its_users = users;
    }
    return *shop;
}

// A provider with one object of each kind.
class Client {
public:
    Client(const char16_t* provider, const std::string& server)
        : module_(Ref<DirectoryModule>::from(create_object(provider))),
          entry_(call<&DirectoryModule::CreateEntry>(module_)),
          container_(call<&DirectoryModule::CreateEntry>(module_)),
          search_(call<&DirectoryModule::CreateSearch>(module_)),
          validator_(call<&DirectoryModule::CreateValidator>(module_)),
          server_(from_utf8(server)) {
        Text nothing;
        call<&DirectoryEntry::Bind>(container_, server_, users_, nothing, service_,
                                    service_password_, no_attributes_);
        call<&DirectorySearch::Connect>(search_, server_, users_, service_, service_password_);
        call<&DirectoryValidator::Open>(validator_, server_, users_);
        for (auto [name, value] :
             {std::pair<Text, Variant>{u"OrvoGUID", u"00112233445566778899AABBCCDDEEFF"},
              {u"OrvoUserType", u"0"},
              {u"objectClass", Values{u"orvoPerson", u"top"}}}) {
            Variant key = name;
            call<&Dictionary::Add>(attributes_, key, value);
        }
    }

    std::size_t check(const std::string& name) {
        Variant path = from_utf8("cn=" + name + ",ou=Users,o=Shop"), password = u"shop-sample";
        return call<&DirectoryValidator::Validate>(validator_, path, password) == 0 ? 1 : 0;
    }
    std::size_t read(const std::string& name) {
        Text entry = from_utf8("cn=" + name), attribute = u"cn";
        call<&DirectoryEntry::Bind>(entry_, server_, users_, entry, service_, service_password_,
                                    no_attributes_);
        const auto values = call<&DirectoryEntry::GetValues>(entry_, attribute).to<Values>();
        return to_utf8(values[0].to<Text>()) == name ? 1 : 0;
    }
    std::size_t search(const std::string& filter, std::int32_t maximum) {
        Text text = from_utf8(filter);
        const auto rows =
            Ref<RecordSet>::from(call<&DirectorySearch::Execute>(search_, text, columns_, maximum));
        return static_cast<std::size_t>(call<&RecordSet::RecordCount>(rows));
    }
    std::size_t create_and_delete(const std::string& name) {
        Variant key = u"cn", value = from_utf8(name);
        call<&Dictionary::SetItem>(attributes_, key, value);
        Object given = attributes_.object();
        Variant classes = Values{Values{u"orvoPerson", u"top"}};
        Text naming = u"cn", entry = from_utf8("cn=" + name + ",ou=Users,o=Shop"),
             class_name = u"orvoPerson";
        call<&DirectoryEntry::CreateChild>(container_, classes, naming, given);
        call<&DirectoryEntry::DeleteChild>(container_, class_name, entry);
        return 1;
    }

private:
    const Ref<DirectoryModule> module_;
    const Ref<DirectoryEntry> entry_, container_;
    const Ref<DirectorySearch> search_;
    const Ref<DirectoryValidator> validator_;
    const Ref<Dictionary> attributes_ = make<DictionaryObject>();
    Text server_;
    Text users_ = u"ou=Users,o=Shop";
    Text service_ = u"cn=orvo-service,ou=Services,o=Shop";
    Secret service_password_ = Secret::of_bytes("service-sample");
    Variant no_attributes_ = Values{};
    Variant columns_ = Values{u"CN", u"BusinessPartnerID", u"mail", u"givenName", u"sn"};
};

// The raw client on a connection that it keeps.
class RawClient {
public:
    explicit RawClient(const PrivateSlapd& slapd)
        : slapd_(slapd), connection_(raw_connection(slapd.url())) {
        authenticate();
    }

    std::size_t check(const std::string& name) {
        if (!checking_) checking_ = raw_connection(slapd_.url());
        return raw_bind(checking_, slapd_.user_dn(name), slapd_.user_password()) ? 1 : 0;
    }
    std::size_t bind_and_read(const std::string& name) {
        authenticate();
        return read(name);
    }
    std::size_t read(const std::string& name) {
        return raw_read(connection_, slapd_.user_dn(name), {}) ? 1 : 0;
    }
    std::size_t search(const std::string& filter, int maximum) {
        const auto rows = raw_search(
            connection_, filter, {"CN", "BusinessPartnerID", "mail", "givenName", "sn"}, maximum);
        return rows ? rows->size() : 0;
    }
    std::size_t create_and_delete(const std::string& name) {
        const std::string entry = slapd_.user_dn(name);
        return raw_add_user(connection_, entry, name) && raw_delete(connection_, entry) ? 1 : 0;
    }

private:
    void authenticate() { raw_bind(connection_, slapd_.service_dn(), slapd_.service_password()); }

    const PrivateSlapd& slapd_;
    RawConnection connection_;
    RawConnection checking_;
};

// A row: what each of them does for one job, drawing users as it likes; answers how many rows or
// entries that were, which must be the same for all.
struct Row {
    const char* name;
    int jobs;  // in a round
    std::function<std::size_t(TwinShop&, RawClient&)> raw;
    std::function<std::size_t(TwinShop&, Client&)> own;
};

struct Turn {
    double seconds = 0;
    std::int64_t done = 0;
    std::size_t rows = 0;

    void run(int jobs, const std::function<std::size_t()>& job) {
        const auto begin = steady_clock::now();
        for (int number = 0; number < jobs; ++number) rows = job();
        seconds += Seconds(steady_clock::now() - begin).count();
        done += jobs;
    }
    double microseconds() const { return seconds / static_cast<double>(done) * 1e6; }
};

// Our LDAP provider takes seconds for what the others do in no time: it has its part of the time,
// and no more.
constexpr double enough_seconds = 0.2;

void tell(benchmark::State& state, const TwinShop& shop, double own_us, double raw_us,
          double ldap_us) {
    state.counters["raw_us"] = raw_us;
    state.counters["ldap_us"] = ldap_us;
    state.counters["rate_to_raw"] = raw_us / own_us;
    state.counters["rate_to_ldap"] = ldap_us / own_us;
    state.counters["file_MiB"] = shop.file_mebibytes();
    state.counters["peak_MiB"] = PeakMemory::mebibytes();
}

void compare(benchmark::State& state, const Row& row) {
    TwinShop& shop = twin_shop(state.range(0));
    RawClient raw(shop.slapd());
    Client ldap(u"OrvoDirectory.Ldap", shop.slapd().server());
    Client own(u"OrvoDirectory.Embedded", shop.file().string());
    const auto by_raw = [&] { return row.raw(shop, raw); };
    const auto by_ldap = [&] { return row.own(shop, ldap); };
    const auto by_own = [&] { return row.own(shop, own); };
    by_raw();
    by_own();
    PeakMemory::begin();
    Turn raw_turn, ldap_turn, own_turn;
    double processor = 0;
    for (auto _ : state) {
        raw_turn.run(row.jobs, by_raw);
        if (ldap_turn.seconds < enough_seconds) ldap_turn.run(1, by_ldap);
        const double before = processor_time(), so_far = own_turn.seconds;
        own_turn.run(row.jobs, by_own);
        processor += processor_time() - before;
        state.SetIterationTime((own_turn.seconds - so_far) / row.jobs);
    }
    if (own_turn.rows != ldap_turn.rows || own_turn.rows != raw_turn.rows)
        state.SkipWithError("the three find different rows");
    state.counters["rows"] = static_cast<double>(own_turn.rows);
    state.counters["own_cpu_us"] = processor / static_cast<double>(own_turn.done) * 1e6;
    tell(state, shop, own_turn.microseconds(), raw_turn.microseconds(), ldap_turn.microseconds());
}

// The same for password checks. Users log in once before, which renews their hashes.
void check_passwords(benchmark::State& state) {
    TwinShop& shop = twin_shop(state.range(0));
    RawClient raw(shop.slapd());
    Client ldap(u"OrvoDirectory.Ldap", shop.slapd().server());
    Client own(u"OrvoDirectory.Embedded", shop.file().string());
    const auto store = directory::embedded::Store::open(shop.file());
    const Secret password = Secret::of_bytes(shop.slapd().user_password());

    struct User {
        std::string name;
        std::string hash;
    };
    std::vector<User> users;
    for (int number = 0; number < (is_brief() ? 3 : 20); ++number) {
        const std::string& name = shop.next_user();
        if (own.check(name) == 0) continue;  // rare0 and the like have no password
        const auto dn =
            directory::DistinguishedName::try_parse(from_utf8(shop.slapd().user_dn(name)));
        users.push_back(
            {name, std::string(directory::embedded::stored_password(*store->read().find(*dn)))});
    }
    if (users.empty()) return state.SkipWithError("all passwords are refused");
    std::size_t at = 0;
    std::size_t right = 1;
    Turn raw_turn, ldap_turn;
    std::vector<double> hashes, rests;
    PeakMemory::begin();
    for (auto _ : state) {
        const User& user = users[at++ % users.size()];
        raw_turn.run(1, [&] { return raw.check(user.name); });
        ldap_turn.run(1, [&] { return ldap.check(user.name); });
        Turn hash_turn, own_turn;
        hash_turn.run(1, [&] { return directory::is_hash_of(user.hash, password); });
        own_turn.run(1, [&] { return own.check(user.name); });
        right &= raw_turn.rows & ldap_turn.rows & own_turn.rows & hash_turn.rows;
        hashes.push_back(hash_turn.seconds);
        rests.push_back(own_turn.seconds - hash_turn.seconds);
        state.SetIterationTime(own_turn.seconds);
    }
    if (right == 0) state.SkipWithError("a password was refused");
    const auto median_us = [](std::vector<double>& values) {
        std::ranges::sort(values);
        return values[values.size() / 2] * 1e6;
    };
    state.counters["hash_us"] = median_us(hashes);
    state.counters["rest_us"] = median_us(rests);
    tell(state, shop, median_us(rests), raw_turn.microseconds(), ldap_turn.microseconds());
}

Row search_row(const char* name, int jobs, const char* filter, int maximum) {
    return {name, jobs, [=](TwinShop&, RawClient& raw) { return raw.search(filter, maximum); },
            [=](TwinShop&, Client& own) { return own.search(filter, maximum); }};
}

const std::vector<Row>& rows() {
    static const char* everybody = "(&(objectClass=orvoPerson)(!(OrvoUserType=0)))";
    static const std::vector<Row> rows = {
        {"bind and read", 50,
         [](TwinShop& shop, RawClient& raw) { return raw.bind_and_read(shop.next_user()); },
         [](TwinShop& shop, Client& own) { return own.read(shop.next_user()); }},
        {"bind and read; raw: read", 50,
         [](TwinShop& shop, RawClient& raw) { return raw.read(shop.next_user()); },
         [](TwinShop& shop, Client& own) { return own.read(shop.next_user()); }},
        search_row("page of 50, the first", 20, everybody, 50),
        {"page of 50, a later one", 20,
         [](TwinShop&, RawClient& raw) { return raw.search(everybody, 50); },
         [](TwinShop& shop, Client& own) {
             return own.search("(&(objectClass=orvoPerson)(!(OrvoUserType=0))(cn>=" +
                                   shop.user_far_behind() + "!))",
                               50);
         }},
        search_row("1,000 rows", 2, "(objectClass=orvoPerson)", 1000),
        search_row("role that nobody has", 50,
                   "(&(OrvoRole=99)(objectClass=orvoPerson)(!(OrvoUserType=0)))", 1000),
        search_row("role that ten have", 20,
                   "(&(OrvoRole=77)(objectClass=orvoPerson)(!(OrvoUserType=0)))", 1000),
        search_row("role that many have", 2,
                   "(&(OrvoRole=2)(objectClass=orvoPerson)(!(OrvoUserType=0)))", 1000),
        {"create, delete", 20,
         [](TwinShop& shop, RawClient& raw) {
             return raw.create_and_delete(shop.next_user() + "bench");
         },
         [](TwinShop& shop, Client& own) {
             return own.create_and_delete(shop.next_user() + "bench");
         }},
    };
    return rows;
}

void create_beside_durable_slapd(benchmark::State& state) {
    static std::int64_t its_users = 0;
    if (its_users != state.range(0)) twin_shop(state.range(0)).slapd_waits_for_disk();
    its_users = state.range(0);
    compare(state, rows().back());
}

[[maybe_unused]] const bool is_registered = [] {
    const auto add = [](const std::string& name, std::int64_t users, auto row) {
        benchmark::RegisterBenchmark((name + "; users").c_str(), row)
            ->ArgName("")
            ->Arg(users)
            ->Iterations(is_brief() ? 1 : 20)
            ->Unit(benchmark::kMicrosecond)
            ->UseManualTime();
    };
    for (const std::int64_t users : {1'000, 100'000, 1'000'000}) {
        if (users > 1'000 && is_brief()) continue;
        if (users > 100'000 && !std::getenv("ORVO_BENCH_MILLION")) continue;
        add("password check beside its hash", users, check_passwords);
        for (const Row& row : rows())
            add(row.name, users, [&row](benchmark::State& state) { compare(state, row); });
        add("create, delete; slapd waits for the disk", users, create_beside_durable_slapd);
    }
    return true;
}();

}  // namespace
}  // namespace orvo
