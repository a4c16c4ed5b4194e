#include "host/web/sessions/session_scripts.h"

#include "host/web/sessions/shared_locks.h"

namespace orvo::web::session_scripts {
namespace {

// Bytes that one call frees for newer ones: what it frees goes to its caller. That is more than one
// session may take.
constexpr std::size_t most_freed = 4 * 1024 * 1024;

template <class... Texts>
std::string script_of(Texts... texts) {
    std::string script(lua_now);
    script += "local afterlife = " + std::to_string(afterlife.count()) + "\n";
    script += "local own_size = " + std::to_string(own_size) + "\n";
    script += "local most_freed = " + std::to_string(most_freed) + "\n";
    (script.append(texts), ...);
    return script;
}

// Takes one away that counts `size`.
constexpr std::string_view lua_drop = R"(local function drop(key, order, total, name, size)
  redis.call('DEL', key)
  redis.call('ZREM', order, name)
  redis.call('DECRBY', total, size)
end
)";

// The last four keys are the ranks and the total.
constexpr std::string_view lua_count = R"(local function count()
  local all = 0
  for i = #KEYS - 3, #KEYS - 1 do all = all + redis.call('ZCARD', KEYS[i]) end
  return all
end
local function size_of_all() return tonumber(redis.call('GET', KEYS[#KEYS]) or 0) end
)";

// Behind lua_drop and lua_count; the last argument is the prefix of names. Takes one away that
// nobody has, and answers its size, 0 for one that somebody has. Of one that has gone with its time
// to live nobody knows the size: it is taken for the usual one.
constexpr std::string_view lua_take_one = R"(local ended = {}
local function take_one(order, name)
  local key = ARGV[#ARGV] .. name
  local session = redis.call('HMGET', key, 'v', 'u')
  local size
  if session[1] then
    if tonumber(session[2] or 0) > now then return 0 end
    size = #session[1] + own_size
    table.insert(ended, name)
    table.insert(ended, session[1])
  else
    size = math.floor(size_of_all() / count())
  end
  drop(key, order, KEYS[#KEYS], name, size)
  return size
end
)";

// PEXPIRE comes first: a store that is full carries it out, and what follows it in the script.
constexpr std::string_view lua_use = R"(local function use(key, order, name, ends)
  redis.call('PEXPIRE', key, math.max(ends - now, 0) + afterlife)
  redis.call('ZADD', order, ends, name)
end
)";

}  // namespace

const store::Script& open() {
    static const store::Script script(script_of(lua_drop, lua_use, lua_release, R"(
for i = 6, #KEYS do release(KEYS[i], ARGV[i]) end
local session = redis.call('HMGET', KEYS[1], 'v', 't', 'u', 'm', 'l', 'c')
if not session[1] then return {0} end
if session[2] ~= ARGV[2] and tonumber(session[3] or 0) > now then return {1} end
local order = KEYS[2 + session[6]]
local ends = redis.call('ZSCORE', order, ARGV[5])
local longest = session[4] + ARGV[4]
if not ends or tonumber(ends) <= now or longest <= now then
  drop(KEYS[1], order, KEYS[5], ARGV[5], #session[1] + own_size)
  return {2, session[1]}
end
use(KEYS[1], order, ARGV[5], math.min(now + session[5], longest))
redis.call('HSET', KEYS[1], 't', ARGV[2], 'u', now + ARGV[3])
return {3, session[1]})"));
    return script;
}

const store::Script& store() {
    static const store::Script script(script_of(lua_drop, lua_count, lua_take_one, lua_use, R"(
local made, is_new, for_room = now, false, 0
local session = redis.call('HMGET', KEYS[1], 't', 'm', 'c')
if session[1] == ARGV[2] then
  made = session[2]
elseif KEYS[1] ~= KEYS[2] and redis.call('HGET', KEYS[2], 't') == ARGV[2] then
  made = redis.call('HGET', KEYS[2], 'm')
elseif ARGV[10] == '1' and not session[1] then
  is_new = true
  for i = 3, 5 do
    for _, name in ipairs(redis.call('ZRANGEBYSCORE', KEYS[i], '-inf', now, 'LIMIT', 0, 4)) do
      take_one(KEYS[i], name)
    end
  end
else
  return {0}
end
local order = KEYS[3 + ARGV[7]]
if ARGV[8] ~= '' then
  local size = (is_new and own_size or 0) + #ARGV[8] - redis.call('HSTRLEN', KEYS[1], 'v')
  if KEYS[1] ~= KEYS[2] then size = size - redis.call('HSTRLEN', KEYS[2], 'v') end
  local function is_full()
    return count() + (is_new and 1 or 0) > tonumber(ARGV[11]) or
           size_of_all() + size > tonumber(ARGV[12])
  end
  local timely, freed = #ended / 2, 0
  for i = 3, 5 do
    repeat
      local before = freed
      for _, name in ipairs(is_full() and redis.call('ZRANGE', KEYS[i], 0, 99) or {}) do
        if name ~= ARGV[3] and freed < most_freed and is_full() then
          freed = freed + take_one(KEYS[i], name)
        end
      end
    until freed == before
  end
  for_room = #ended / 2 - timely
  if is_new and is_full() then return {2, ended, for_room} end
  if KEYS[1] ~= KEYS[2] then redis.call('DEL', KEYS[1]) end
  if session[3] and (KEYS[1] ~= KEYS[2] or session[3] ~= ARGV[7]) then
    redis.call('ZREM', KEYS[3 + session[3]], ARGV[3])
  end
  redis.call('HSET', KEYS[2], 'v', ARGV[8], 't', ARGV[2], 'm', made, 'l', ARGV[6], 'c', ARGV[7])
  redis.call('INCRBY', KEYS[6], size)
end
use(KEYS[2], order, ARGV[4], math.min(now + ARGV[6], made + ARGV[5]))
if tonumber(ARGV[9]) > 0 then
  redis.call('HSET', KEYS[2], 'u', now + ARGV[9])
else
  redis.call('HDEL', KEYS[2], 'u')
end
for _, key in ipairs({order, KEYS[6]}) do redis.call('PEXPIRE', key, ARGV[5] + afterlife) end
return {1, ended, for_room})"));
    return script;
}

const store::Script& end() {
    static const store::Script script(script_of(lua_drop, R"(
local session = redis.call('HMGET', KEYS[1], 't', 'c')
if not session[1] then return 2 end
if session[1] ~= ARGV[2] then return 0 end
local size = redis.call('HSTRLEN', KEYS[1], 'v') + own_size
drop(KEYS[1], KEYS[2 + session[2]], KEYS[5], ARGV[3], size)
return 1)"));
    return script;
}

const store::Script& look() {
    static const store::Script script(script_of(lua_use, R"(
local session = redis.call('HMGET', KEYS[1], 'v', 'u', 'm', 'l', 'c')
if not session[1] then return false end
local order = KEYS[2 + session[5]]
local longest = session[3] + ARGV[2]
if tonumber(session[2] or 0) <= now then
  local ends = redis.call('ZSCORE', order, ARGV[3])
  if not ends or tonumber(ends) <= now or longest <= now then return false end
end
use(KEYS[1], order, ARGV[3], math.min(now + session[4], longest))
return session[1])"));
    return script;
}

const store::Script& take() {
    static const store::Script script(script_of(lua_drop, lua_count, lua_take_one, R"(
for i = 1, 3 do
  local left = ARGV[2] - #ended / 2
  local names = left > 0 and redis.call('ZRANGEBYSCORE', KEYS[i], '-inf', now, 'LIMIT', 0, left)
  for _, name in ipairs(names or {}) do take_one(KEYS[i], name) end
end
return ended)"));
    return script;
}

const store::Script& count() {
    static const store::Script script(
        script_of(lua_count, "return {count(), math.max(size_of_all(), 0)}"));
    return script;
}

}  // namespace orvo::web::session_scripts
