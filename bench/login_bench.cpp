// Full web logins: through the validator alone, in an object context like a page's, and over HTTP
// through the sample site (the login page with its form's token, and the form that comes back). By
// 1 and 4 threads, beside the raw client doing what a login needs of the directory at least on kept
// connections: the bind, and one reading each of the user, the profile and the account. Rounds
// alternate; "rate_to_raw" is how many logins are done in the time of one of the raw client's.
// "operations" are those that the directory server counted for one login, unbinds and the like
// included; docs/login.md tells which.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <regex>
#include <thread>

#include "bench/crew.h"
#include "bench/raw_client.h"
#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "platform/objects/context/context_scope.h"
#include "tests/support/child_process.h"
#include "tests/support/http_client.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/recording/recording_page.h"
#include "tests/support/slapd.h"

namespace orvo {
namespace {

PrivateSlapd& directory() {
    static PrivateSlapd slapd;
    static const int is_named = setenv("ORVO_SITE_CONFIG", slapd.site_ini().c_str(), 1);
    benchmark::DoNotOptimize(is_named);
    return slapd;
}

// The operations that the server has completed so far, this question not counted.
long operations_completed() {
    static LdapProbe probe(directory().url(), directory().root_dn(), directory().root_password());
    return std::stol(probe.values("cn=Operations,cn=Monitor", "monitorOpCompleted").front());
}

struct RawLogin {
    std::string user = directory().user_dn("jsmith");
    RawConnection kept = raw_connection(directory().url());
    RawConnection kept_service = raw_connection(directory().url());
    bool is_wrong = false;

    RawLogin() {
        is_wrong |=
            !raw_bind(kept_service, directory().service_dn(), directory().service_password());
    }
    void log_in() {
        is_wrong |= !raw_bind(kept, user, directory().user_password());
        is_wrong |= !raw_read(kept, user,
                              {"cn", "OrvoUserType", "BusinessPartnerID", "ProfileCN", "OrvoApps"});
        is_wrong |= !raw_read(kept, "cn=Buyers,ou=Profiles,o=Shop", {"cn"});
        is_wrong |=
            !raw_read(kept_service, "cn=1,ou=Accounts,o=Shop", {"OrvoNTUser", "OrvoNTPassword"});
    }
};

// One page after the other, each with a validator of its own.
struct ValidatorLogin : RawLogin {
    Journal journal;
    RecordingPage page{journal};

    ValidatorLogin() {
        page.application_values[filter_connector_progid] = create_object(filter_connector_progid);
    }
    void log_in_by_component() {
        const ContextScope scope({{u"Request", page.request},
                                  {u"Response", page.response},
                                  {u"Session", page.session},
                                  {u"Application", page.application}});
        page.session_values.clear();
        const Object validator = create_object(u"OrvoMembership.Validator");
        is_wrong |= late::call(validator, u"ValidateCredentials",
                               {u"jsmith", from_utf8(directory().user_password()), u"/"}) !=
                    Variant(std::int32_t{0});
        journal.clear();
    }
};

// The sample site, served by the web host for as long as the program runs.
class SampleSite {
public:
    SampleSite()
        : output_(directory().folder() / "web"),
          process_({ORVO_WEB, ORVO_SHOP, "--port", "0"}, output_) {
        for (int i = 0; i < 300 && port_ == 0; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            std::ifstream file(output_);
            std::string line;
            if (std::getline(file, line) && !file.eof() && line.starts_with("Listening on "))
                port_ = std::stoi(line.substr(line.rfind(':') + 1));
        }
        if (port_ == 0) throw std::runtime_error("orvo-web does not listen");
    }
    ~SampleSite() { process_.terminate(5); }
    int port() const { return port_; }

private:
    std::filesystem::path output_;
    ChildProcess process_;
    int port_ = 0;
};

SampleSite& sample_site() {
    static SampleSite site;
    return site;
}

// A new browser each time.
struct WebLogin : RawLogin {
    HttpClient client{sample_site().port()};

    void log_in_by_component() {
        static const std::regex token("name=\"token\" value=\"([^\"]*)\"");
        const auto form = client.get("/login.asp");
        std::smatch found;
        if (!form || !std::regex_search(form->body, found, token)) {
            is_wrong = true;
            return;
        }
        const std::string cookie = form->get_header_value("Set-Cookie");
        const auto answer = client.post(
            "/login.asp",
            HttpFields{
                {"token", found[1]}, {"user", "jsmith"}, {"password", directory().user_password()}},
            {{"Cookie", cookie.substr(0, cookie.find(';'))}});
        is_wrong |= !answer || answer->status != 303;
    }
};

template <class Login>
void logins(benchmark::State& state, int rounds) {
    directory();
    Crew<Login> crew(static_cast<int>(state.range(0)));
    std::atomic<bool> is_wrong = false;
    double raw_time = 0, own_time = 0;
    long operations = 0;
    crew.run(1, [](Login& login) { login.log_in_by_component(); });
    for (auto _ : state) {
        raw_time += crew.run(rounds, [&](Login& login) {
            login.log_in();
            if (login.is_wrong) is_wrong = true;
        });
        const long before = operations_completed();
        const double own = crew.run(rounds, [](Login& login) { login.log_in_by_component(); });
        operations += operations_completed() - before - 1;
        own_time += own;
        state.SetIterationTime(own);
    }
    if (is_wrong) state.SkipWithError("a login failed");
    const double done = static_cast<double>(state.iterations() * state.range(0) * rounds);
    state.counters["logins_per_s"] = done / own_time;
    state.counters["raw_per_s"] = done / raw_time;
    state.counters["rate_to_raw"] = raw_time / own_time;
    state.counters["operations"] = static_cast<double>(operations) / done;
}

void by_validator(benchmark::State& state) { logins<ValidatorLogin>(state, 20); }
void over_http(benchmark::State& state) {
    sample_site();  // a program does not outlive the thread that started it
    logins<WebLogin>(state, 10);
}

void threads(benchmark::internal::Benchmark* row) {
    row->ArgName("")->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond)->UseManualTime();
}
BENCHMARK(by_validator)->Name("login, validator alone; threads")->Apply(threads);
BENCHMARK(over_http)->Name("login over HTTP, page and form; threads")->Apply(threads);

}  // namespace
}  // namespace orvo
