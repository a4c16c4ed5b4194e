#pragma once

#include <functional>
#include <mutex>
#include <unordered_map>
#include <unordered_set>

#include "suite/authfilter/filter_store.h"

namespace orvo::authfilter {

using Clock = std::chrono::steady_clock;

struct Limits {
    // Records, and as many logins. Where the store is full of live ones, a new one is refused.
    std::size_t most = 100'000;
    // Of these, how many one user has.
    std::size_t most_of_user = usual_logins_of_one_user;
    // How long a record without a live login is kept after it was last stored or found.
    std::chrono::minutes record_lifetime{60};
};

// A store in the memory of one process. What has ended is gone for every question at once, and its
// memory is given back at the latest with the first change a minute later.
class MemoryStore : public Store {
public:
    explicit MemoryStore(Limits limits = {}, std::function<Clock::time_point()> now = Clock::now);

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
    void set_most_of_user(std::size_t most) override;

    // How many are held, ended ones that were not swept yet included.
    std::size_t record_count() const;
    std::size_t login_count() const;

private:
    struct HeldRecord {
        Record record;
        Clock::time_point ends;
        Text user;  // empty while nobody is named in it
    };
    struct HeldLogin {
        Login login;
        Clock::time_point ends;
        Text user;
        std::uint64_t number;
        Clock::time_point began;
    };
    using Records = std::unordered_map<Text, HeldRecord>;
    using Logins = std::unordered_map<Text, HeldLogin>;

    // The GUIDs of what each user has, by user_key.
    class GuidsByUser {
    public:
        void add(const Text& user, const Text& guid) { guids_[user].insert(guid); }
        void remove(const Text& user, const Text& guid);
        std::vector<Text> of(const Text& user) const;

    private:
        std::unordered_map<Text, std::unordered_set<Text>> guids_;
    };

    // All of these: with the lock held.
    Records::iterator live_record(const Text& guid);
    bool has_live_login(const Text& guid) const;
    void hold(const Text& guid, Record record);
    void end_login(const Text& guid);
    void drop_record(const Text& guid);
    void drop_record(Records::iterator record);
    // With their records; how many of them were live.
    std::size_t end_logins_of(const Text& user, const Text& except);
    void make_room_of_user(const Text& guid, const Text& user, const GuidsByUser& held);
    Clock::time_point last_use(const Text& guid) const;
    Text user_key(const Login& login) const;
    // Whether a record is of the user who has the GUID already.
    bool is_of_same_user(const Text& guid, const Record& record) const;
    void sweep();
    void sweep_if_due();

    Limits limits_;
    const std::function<Clock::time_point()> now_;
    mutable std::mutex lock_;
    Records records_;
    Logins logins_;
    GuidsByUser records_of_user_;
    GuidsByUser logins_of_user_;
    std::uint64_t begun_ = 0;
    Clock::time_point next_sweep_;
};

}  // namespace orvo::authfilter
