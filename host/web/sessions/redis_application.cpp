#include "host/web/sessions/redis_application.h"

#include <algorithm>
#include <charconv>

#include "host/web/messages/random_token.h"
#include "host/web/sessions/kept_bytes.h"
#include "platform/values/failure.h"

namespace orvo::web {
namespace {

// Keys: state, values. Arguments: the version that is known. Answers {version} and, where it is
// another one, what there is.
const store::Script& read_script() {
    static const store::Script script(R"(
local version = redis.call('HGET', KEYS[1], 'v')
if not version then return {''} end
for _, key in ipairs(KEYS) do redis.call('EXPIRE', key, 2592000) end
if version == ARGV[2] then return {version} end
return {version, redis.call('HGETALL', KEYS[2])})");
    return script;
}

// Keys: state. Arguments: token, the lock's life. Answers whether it was free.
const store::Script& lock_script() {
    static const store::Script script(std::string(lua_now) + R"(
local lock = redis.call('HMGET', KEYS[1], 't', 'u')
if lock[1] ~= ARGV[2] and tonumber(lock[2] or 0) > now then return 0 end
redis.call('HSET', KEYS[1], 't', ARGV[2], 'u', now + ARGV[3])
redis.call('EXPIRE', KEYS[1], 2592000)
return 1)");
    return script;
}

// Versions are times, so that none comes twice where a replica has taken over that lacks the last.
// Keys: state, values. Arguments: token ("": without a lock), what to do, field, content, channel.
// Answers whether nobody else has the lock.
const store::Script& change_script() {
    static const store::Script script(std::string(lua_now) + R"(
local state = redis.call('HMGET', KEYS[1], 't', 'u', 'v')
if ARGV[2] ~= '' then
  if state[1] ~= ARGV[2] then return 0 end
elseif tonumber(state[2] or 0) > now then
  return 0
end
if ARGV[3] == 'put' then
  local old = redis.call('HGET', KEYS[2], ARGV[4])
  local place = old and string.match(old, '^%d+') or redis.call('HINCRBY', KEYS[1], 'o', 1)
  redis.call('HSET', KEYS[2], ARGV[4], place .. ':' .. ARGV[5])
elseif ARGV[3] == 'remove' then
  redis.call('HDEL', KEYS[2], ARGV[4])
else
  redis.call('DEL', KEYS[2])
end
local version = string.format('%.0f', math.max((state[3] or 0) + 1, now * 1000))
redis.call('HSET', KEYS[1], 'v', version)
for _, key in ipairs(KEYS) do redis.call('EXPIRE', key, 2592000) end
redis.call('PUBLISH', ARGV[6], version)
return 1)");
    return script;
}

// Tries until it is done, as long as the holder's patience lasts.
template <class Try>
void try_for(const ApplicationState::Holder& holder, Try try_once) {
    const auto end = std::chrono::steady_clock::now() + holder.patience();
    GrowingPause pause;
    while (!try_once()) {
        const auto next = std::chrono::steady_clock::now() + pause.next();
        if (next > end) ApplicationLock::give_up();
        std::this_thread::sleep_until(next);
    }
}

}  // namespace

RedisApplication::RedisApplication(SharedStore& store, std::chrono::milliseconds copy_life)
    : store_(store),
      copy_life_(copy_life),
      values_key_(store.key("application")),
      state_key_(store.key("application", "state")),
      channel_(store.key("application", "changes")),
      changes_(
          store.redis(), channel_, [this](std::string_view) { is_changed_ = true; },
          [this] { is_changed_ = true; }) {}

NamedValues RedisApplication::snapshot() {
    const std::lock_guard guard(copy_lock_);
    refresh();
    NamedValues all = own_;
    for (std::size_t i = 0; i < copy_.count(); ++i) all.put(copy_.name_at(i), copy_.value_at(i));
    return all;
}

Variant RedisApplication::get(TextView name) {
    const std::lock_guard guard(copy_lock_);
    Variant own = own_.get(name);
    if (!own.is_empty()) return own;
    refresh();
    return copy_.get(name);
}

void RedisApplication::put_own(TextView name, const Variant& value) {
    const std::lock_guard guard(copy_lock_);
    own_.put(name, value);
}

void RedisApplication::refresh() {
    const auto now = std::chrono::steady_clock::now();
    if (now < good_until_ && !is_changed_) return;
    is_changed_ = false;
    try {
        const store::Reply reply =
            store_.run_repeatable(read_script(), {state_key_, values_key_}, {version_});
        const auto& answer = reply.list();
        if (answer.at(0).text().empty())
            copy_.remove_all();
        else if (answer.size() > 1)
            read(answer[1].list());
        version_ = answer.at(0).text();
        has_copy_ = true;
        good_until_ = now + copy_life_;
    } catch (...) {
        is_changed_ = true;
        try {
            throw;
        } catch (const StoreAway&) {
            if (!has_copy_) throw;
        }
    }
}

void RedisApplication::read(const store::Reply::List& fields) {
    struct Placed {
        std::uint64_t place = 0;
        NamedValues value;
    };
    std::vector<Placed> all;
    for (std::size_t i = 0; i + 1 < fields.size(); i += 2) {
        const std::string& field = fields[i].text();
        const std::string_view content = fields[i + 1].text();
        const auto colon = content.find(':');
        if (colon == content.npos) continue;
        Placed placed;
        std::from_chars(content.data(), content.data() + colon, placed.place);
        const auto bytes = store_.unseal(content.substr(colon + 1), values_key_ + field);
        auto value = bytes ? try_values_of(*bytes) : std::nullopt;
        // What this machine cannot read is not there for it.
        if (!value || value->count() != 1) continue;
        placed.value = std::move(*value);
        all.push_back(std::move(placed));
    }
    std::ranges::sort(all, {}, &Placed::place);
    copy_.remove_all();
    for (const Placed& placed : all) copy_.put(placed.value.name_at(0), placed.value.value_at(0));
}

void RedisApplication::lock(const Holder& holder) {
    {
        const auto guard = lock_.take(holder);
        if (!token_.empty()) return;
    }
    const std::string token = random_token();
    try {
        lock_for_all(holder, token);
    } catch (...) {
        lock_.release(holder);
        throw;
    }
    const auto guard = lock_.guard();
    token_ = token;
    store_.locks().hold(state_key_, token);
    is_changed_ = true;
}

void RedisApplication::lock_for_all(const Holder& holder, const std::string& token) {
    try_for(holder, [&] {
        try {
            return store_
                       .run_repeatable(lock_script(), {state_key_},
                                       {token, std::to_string(SharedLocks::life.count())})
                       .integer() == 1;
        } catch (const StoreAway&) {
            store_.locks().release_later({{state_key_, token}});
            throw;
        }
    });
}

void RedisApplication::unlock(const Holder& holder) {
    std::string token;
    {
        const auto guard = lock_.guard();
        if (!lock_.is_of(holder)) return;
        token = std::exchange(token_, {});
    }
    if (!token.empty()) store_.locks().release(state_key_, token);
    lock_.release(holder);
}

void RedisApplication::put(const Holder& holder, TextView name, const Variant& value) {
    need_not_own(name);
    NamedValues one;
    one.put(name, value);
    const std::string field = field_of(name);
    change(holder, {"put", field, store_.seal(bytes_of(one), values_key_ + field)});
}

void RedisApplication::remove(const Holder& holder, TextView name) {
    need_not_own(name);
    change(holder, {"remove", field_of(name)});
}

void RedisApplication::need_not_own(TextView name) {
    const std::lock_guard guard(copy_lock_);
    if (!own_.get(name).is_empty())
        throw Failure(runtime_error::invalid_call, {},
                      u"Application(\"" + Text(name) +
                          u"\") is the web host's own, and cannot be changed where the site's "
                          u"store is shared");
}

std::string RedisApplication::field_of(TextView name) const {
    return store::Keyring::name_of(to_utf8_with_halves(lower(name)));
}

void RedisApplication::change(const Holder& holder, const Change& change) {
    try_for(holder, [&] {
        std::string token;
        {
            const auto guard = lock_.pass(holder);
            if (lock_.is_of(holder)) token = token_;
        }
        const bool is_done =
            store_
                .run_repeatable(change_script(), {state_key_, values_key_},
                                {token, change.what, change.field, change.sealed, channel_})
                .integer() == 1;
        if (!is_done && !token.empty()) ApplicationLock::give_up();
        return is_done;
    });
    is_changed_ = true;
}

}  // namespace orvo::web
