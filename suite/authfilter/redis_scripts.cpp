#include "suite/authfilter/redis_scripts.h"

namespace orvo::authfilter::scripts {
namespace {

constexpr const char* common = R"(
local prefix, ahead = ARGV[1], tonumber(ARGV[2])
local clock = redis.call('TIME')
local now = clock[1] * 1000 + math.floor(clock[2] / 1000) + ahead
local changed = {}

local function record_key(guid) return prefix .. ':record:' .. guid end
local function login_key(guid) return prefix .. ':login:' .. guid end
local function records_of(name) return prefix .. ':records-of:' .. name end
local function logins_of(name) return prefix .. ':logins-of:' .. name end

local function each(names) return string.gmatch(names, '%x+') end
local function has_common(names, others)
    for name in each(names) do
        if string.find(others, name, 1, true) then return true end
    end
    return false
end

local function text(key, field) return redis.call('HGET', key, field) or '' end
local function number(key, field) return tonumber(redis.call('HGET', key, field) or 0) end

local function keep(key, ends)
    if redis.call('PTTL', key) < ends - now then
        redis.call('PEXPIREAT', key, ends - ahead)
    end
end
local function keep_sets(user, set_of, ends)
    for name in each(user) do keep(set_of(name), ends) end
end

local function is_live(guid) return number(login_key(guid), 'ends') > now end

local function drop(guid, key, set_of)
    if redis.call('EXISTS', key) == 0 then return end
    for name in each(text(key, 'user')) do redis.call('SREM', set_of(name), guid) end
    redis.call('DEL', key)
    changed[guid] = true
end
local function end_login(guid) drop(guid, login_key(guid), logins_of) end
local function drop_record(guid) drop(guid, record_key(guid), records_of) end

local function has_record(guid)
    local key = record_key(guid)
    if redis.call('EXISTS', key) == 0 then return false end
    if number(key, 'ends') > now or is_live(guid) then return true end
    drop_record(guid)
    return false
end

-- A record stays as long as its own time or its login's.
local function keep_record(guid)
    local key = record_key(guid)
    if redis.call('EXISTS', key) == 0 then return end
    local ends = math.max(number(key, 'ends'), number(login_key(guid), 'ends'))
    keep(key, ends)
    keep_sets(text(key, 'user'), records_of, ends)
end

-- Of a user's GUIDs those that there still are.
local function held(user, set_of, key_of)
    local guids, seen = {}, {}
    for name in each(user) do
        for _, guid in ipairs(redis.call('SMEMBERS', set_of(name))) do
            if redis.call('EXISTS', key_of(guid)) == 0 then
                redis.call('SREM', set_of(name), guid)
            elseif not seen[guid] then
                seen[guid] = true
                guids[#guids + 1] = guid
            end
        end
    end
    return guids
end
local function held_logins(user) return held(user, logins_of, login_key) end

local function end_logins_of(user, except)
    local live = 0
    for _, guid in ipairs(held_logins(user)) do
        if guid ~= except then
            if is_live(guid) then live = live + 1 end
            end_login(guid)
            drop_record(guid)
        end
    end
    return live
end

local function last_use(guid, lifetime)
    local key = login_key(guid)
    local ends = number(key, 'ends')
    if ends > 0 then return ends - number(key, 'timeout') end
    return number(record_key(guid), 'ends') - lifetime
end

-- The one that was used longest ago goes, those without a live login first.
local function make_room(guid, user, set_of, key_of, most, lifetime)
    local count = 0
    for name in each(user) do count = count + redis.call('SCARD', set_of(name)) end
    if count < most then return end
    local others = {}
    for _, other in ipairs(held(user, set_of, key_of)) do
        if other ~= guid then
            others[#others + 1] =
                {guid = other, is_live = is_live(other), used = last_use(other, lifetime)}
        end
    end
    table.sort(others, function(a, b)
        if a.is_live ~= b.is_live then return b.is_live end
        return a.used < b.used
    end)
    for i = 1, #others - most + 1 do
        end_login(others[i].guid)
        drop_record(others[i].guid)
    end
end

local function hold(guid, lifetime, most, sealed, account, user, person, is_named)
    make_room(guid, user, records_of, record_key, most, lifetime)
    drop_record(guid)
    redis.call('HSET', record_key(guid), 'sealed', sealed, 'account', account, 'user', user,
               'person', person, 'is_named', is_named, 'ends', now + lifetime)
    for name in each(user) do redis.call('SADD', records_of(name), guid) end
    keep_record(guid)
    changed[guid] = true
end

local function done(answer)
    local guids = {}
    for guid in pairs(changed) do
        redis.call('PUBLISH', prefix .. ':ended-logins', guid)
        guids[#guids + 1] = guid
    end
    return {answer, guids}
end

local guid, lifetime = ARGV[3], tonumber(ARGV[4])
)";

Script script(const char* body) { return Script(std::string(common) + body); }

// Also in a store that is full: it takes no more room there than before.
Script script_of_full_store(const char* body) {
    return Script("#!lua flags=allow-oom" + std::string(common) + body);
}

}  // namespace

const Script& find() {
    static const Script made = script_of_full_store(R"(
if not has_record(guid) then return false end
local key = record_key(guid)
redis.call('HSET', key, 'ends', now + lifetime)
keep_record(guid)
return redis.call('HGET', key, 'sealed')
)");
    return made;
}

const Script& ask() {
    static const Script made = script_of_full_store(R"(
if not is_live(guid) then return false end
local login, record = login_key(guid), record_key(guid)
local ends = now + number(login, 'timeout')
redis.call('HSET', login, 'ends', ends)
keep(login, ends)
keep_sets(text(login, 'user'), logins_of, ends)
if redis.call('EXISTS', record) == 1 then
    redis.call('HSET', record, 'ends', now + lifetime)
    keep_record(guid)
end
return {redis.call('HGET', login, 'sealed'), redis.call('HGET', record, 'sealed')}
)");
    return made;
}

const Script& user_of() {
    static const Script made = script(R"(
if not is_live(guid) then return false end
return {redis.call('HGET', login_key(guid), 'sealed'), redis.call('HGET', record_key(guid), 'sealed')}
)");
    return made;
}

const Script& create() {
    static const Script made = script(R"(
if has_record(guid) and text(record_key(guid), 'sealed') ~= ARGV[7] then return done(0) end
hold(guid, lifetime, tonumber(ARGV[6]), ARGV[5], '', '', '', 0)
return done(1)
)");
    return made;
}

// Whoever takes a GUID over has none of the former user's applications.
const Script& save() {
    static const Script made = script(R"(
local sealed, most, account, user, person, is_named, name =
    ARGV[5], tonumber(ARGV[6]), ARGV[7], ARGV[8], ARGV[9], ARGV[10], ARGV[11]
local is_same
if text(record_key(guid), 'is_named') == '1' then
    is_same = has_common(text(record_key(guid), 'person'), person)
else
    is_same = has_common(text(login_key(guid), 'name'), name)
end
if not is_same then end_login(guid) end
hold(guid, lifetime, most, sealed, account, user, person, is_named)
return done(1)
)");
    return made;
}

const Script& begin() {
    static const Script made = script(R"(
local sealed, most, user, name, timeout =
    ARGV[5], tonumber(ARGV[6]), ARGV[7], ARGV[8], tonumber(ARGV[10])
local account = text(record_key(guid), 'account')
if account ~= '' then user = account end
if ARGV[9] == '1' then end_logins_of(user, guid) end
make_room(guid, user, logins_of, login_key, most, lifetime)
end_login(guid)
local counter = prefix .. ':login-number'
local ends = now + timeout
-- It may be gone before logins that are kept alive: it never begins below their numbers.
redis.call('SET', counter, now, 'NX')
redis.call('HSET', login_key(guid), 'sealed', sealed, 'user', user, 'name', name,
           'timeout', timeout, 'began', now, 'ends', ends,
           'number', redis.call('INCR', counter))
keep(counter, ends)
keep(login_key(guid), ends)
for name in each(user) do redis.call('SADD', logins_of(name), guid) end
keep_sets(user, logins_of, ends)
keep_record(guid)
changed[guid] = true
return done(1)
)");
    return made;
}

const Script& forget() {
    static const Script made = script(R"(
end_login(guid)
drop_record(guid)
return done(1)
)");
    return made;
}

const Script& logins_of() {
    static const Script made = script(R"(
local rows = {}
if not is_live(guid) then return rows end
for _, other in ipairs(held_logins(text(login_key(guid), 'user'))) do
    if is_live(other) then
        local key = login_key(other)
        rows[#rows + 1] = {number(key, 'number'), now - number(key, 'began'),
                           now - (number(key, 'ends') - number(key, 'timeout')),
                           other == guid and 1 or 0}
    end
end
return rows
)");
    return made;
}

const Script& end() {
    static const Script made = script(R"(
if not is_live(guid) then return done(0) end
for _, other in ipairs(held_logins(text(login_key(guid), 'user'))) do
    if text(login_key(other), 'number') == ARGV[4] and is_live(other) then
        end_login(other)
        drop_record(other)
        return done(1)
    end
end
return done(0)
)");
    return made;
}

const Script& end_others() {
    static const Script made = script(R"(
if not is_live(guid) then return done(0) end
return done(end_logins_of(text(login_key(guid), 'user'), guid))
)");
    return made;
}

const Script& end_all_of() {
    static const Script made = script(R"(
local user, except = ARGV[3], ARGV[4]
local ended = end_logins_of(user, except)
for _, other in ipairs(held(user, records_of, record_key)) do
    if other ~= except then drop_record(other) end
end
return done(ended)
)");
    return made;
}

}  // namespace orvo::authfilter::scripts
