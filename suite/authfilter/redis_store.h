#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "suite/authfilter/filter_store.h"
#include "suite/authfilter/sealed_form.h"
#include "suite/store/site_store.h"

namespace orvo::authfilter {

// A store that several machines share. Each operation is one script of the shared store, so that it
// is atomic among all of them. What it holds of GUIDs and users are names (Keyring), all else is
// sealed. How many logins there are in all is limited by the store's memory alone: one that is full
// refuses new ones, and goes on with those it has.
//
// Every operation raises what store::Redis does (is_unreachable, where there is no store at the
// moment, or it is full); nothing is known to have happened then, and nobody is let in. `forget`
// and `end_all_of` are asked once more where the connection is lost before their answer, so that
// the logins end; how many end, and which, is then what the second answer says.
class RedisStore final : public Store {
public:
    struct Options {
        std::size_t most_of_user = usual_logins_of_one_user;
        // How long a record without a live login is kept after it was last stored or found.
        std::chrono::minutes record_lifetime{60};
        // For tests: how far the time is ahead of the store's clock.
        std::function<std::chrono::milliseconds()> ahead = {};
        // Told the name (Keyring::name_of) of each GUID of which an operation of this object has
        // changed or ended something, before the operation returns, on its thread.
        std::function<void(const std::string& name)> on_change = {};
    };
    // The same for the operations of all machines, this one's included: a channel's messages.
    static constexpr const char* change_channel = "ended-logins";

    RedisStore(std::shared_ptr<const store::SiteStore> site, Options options);

    std::optional<Record> find(const Text& guid) override;
    bool try_create(const Text& guid) override;
    void save(const Text& guid, const Record& record) override;
    void begin(const Login& login) override;
    bool ask(const Text& guid, std::int32_t application) override;
    Text user_of(const Text& guid) override;
    void forget(const Text& guid) override;
    std::vector<LiveLoginFacts> logins_of(const Text& guid) override;
    bool try_end(const Text& guid, std::uint64_t number) override;
    std::size_t end_others(const Text& guid) override;
    std::size_t end_all_of(const Text& account, const Text& except) override;
    void set_most_of_user(std::size_t most) override { most_of_user_ = most; }

    // What a live login's request needs: whom it has let in, for what, and its record.
    struct Live {
        LetIn login;
        std::optional<Record> record;

        bool has(std::int32_t application) const;
        Text user() const;  // as Store::user_of
    };
    // Nothing where the GUID has no live login; one that is alive lives on, as with `ask`.
    std::optional<Live> ask_all(const Text& guid);

private:
    using Arguments = std::vector<std::string>;

    store::Reply run(const store::Script& script, Arguments arguments);
    // For what may as well be done twice.
    store::Reply run_repeatable(const store::Script& script, Arguments arguments);
    Arguments completed(Arguments arguments) const;
    std::int64_t changed(const store::Reply& reply) const;
    std::optional<Live> unsealed(const store::Reply& reply, const std::string& name) const;
    std::string lifetime() const;
    std::string most() const { return std::to_string(most_of_user_); }
    std::string record_key(const std::string& name) const;
    std::string login_key(const std::string& name) const;

    const std::shared_ptr<const store::SiteStore> site_;
    const Options options_;
    std::atomic<std::size_t> most_of_user_;
};

// The name under which the shared store knows a GUID.
std::string stored_name(const Text& guid);

}  // namespace orvo::authfilter
