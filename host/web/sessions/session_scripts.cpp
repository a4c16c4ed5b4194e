#include "host/web/sessions/session_scripts.h"

#include "host/web/sessions/shared_locks.h"

namespace orvo::web::session_scripts {
namespace {

std::string script_of(std::string_view text, std::string_view more = {}) {
    return std::string(lua_now) + "local afterlife = " + std::to_string(afterlife.count()) +
           std::string(text) + std::string(more);
}

// Takes one away that nobody has. The prefix of names is the last argument.
constexpr std::string_view lua_take_one = R"(
local ended = {}
local function take_one(order, name)
  local key = ARGV[#ARGV] .. name
  local session = redis.call('HMGET', key, 'v', 'u')
  if session[1] and tonumber(session[2]) > now then return false end
  redis.call('DEL', key)
  redis.call('ZREM', order, name)
  if session[1] then
    table.insert(ended, name)
    table.insert(ended, session[1])
  end
  return true
end
)";

}  // namespace

const store::Script& open() {
    static const store::Script script(script_of(R"(
local session = redis.call('HMGET', KEYS[1], 'v', 't', 'u', 'm', 'c')
if not session[1] then return {0} end
if session[2] ~= ARGV[2] and tonumber(session[3]) > now then return {1} end
local order = KEYS[2 + session[5]]
local ends = redis.call('ZSCORE', order, ARGV[5])
if not ends or tonumber(ends) <= now or now - session[4] >= tonumber(ARGV[4]) then
  redis.call('DEL', KEYS[1])
  redis.call('ZREM', order, ARGV[5])
  return {2, session[1]}
end
redis.call('HSET', KEYS[1], 't', ARGV[2], 'u', now + ARGV[3])
return {3, session[1]})"));
    return script;
}

const store::Script& store() {
    static const store::Script script(script_of(lua_take_one, R"(
local made, for_room = now, 0
local session = redis.call('HMGET', KEYS[1], 't', 'm', 'c')
if session[1] == ARGV[2] then
  made = tonumber(session[2])
  if KEYS[1] ~= KEYS[2] then redis.call('DEL', KEYS[1]) end
  if KEYS[1] ~= KEYS[2] or session[3] ~= ARGV[7] then
    redis.call('ZREM', KEYS[3 + session[3]], ARGV[3])
  end
elseif ARGV[10] == '1' and not session[1] then
  local count = 0
  for i = 3, 5 do
    for _, name in ipairs(redis.call('ZRANGEBYSCORE', KEYS[i], '-inf', now, 'LIMIT', 0, 4)) do
      take_one(KEYS[i], name)
    end
    count = count + redis.call('ZCARD', KEYS[i])
  end
  local timely = #ended / 2
  for i = 3, 5 do
    if count < tonumber(ARGV[11]) then break end
    for _, name in ipairs(redis.call('ZRANGE', KEYS[i], 0, 9)) do
      if take_one(KEYS[i], name) then
        count = count - 1
        break
      end
    end
  end
  for_room = #ended / 2 - timely
  if count >= tonumber(ARGV[11]) then return {2, ended, for_room} end
elseif KEYS[1] ~= KEYS[2] and redis.call('HGET', KEYS[2], 't') == ARGV[2] then
  made = tonumber(redis.call('HGET', KEYS[2], 'm'))
else
  return {0}
end
if ARGV[8] ~= '' then
  redis.call('HSET', KEYS[2], 'v', ARGV[8], 'm', made, 'l', ARGV[6], 'c', ARGV[7])
end
local locked = tonumber(ARGV[9])
redis.call('HSET', KEYS[2], 't', ARGV[2], 'u', locked > 0 and now + locked or 0)
local ends = math.min(now + ARGV[6], made + ARGV[5])
local order = KEYS[3 + ARGV[7]]
redis.call('ZADD', order, ends, ARGV[4])
redis.call('PEXPIRE', KEYS[2], math.max(ends - now, 0) + afterlife)
redis.call('PEXPIRE', order, ARGV[5] + afterlife)
return {1, ended, for_room})"));
    return script;
}

const store::Script& end() {
    static const store::Script script(script_of(R"(
local session = redis.call('HMGET', KEYS[1], 't', 'c')
if not session[1] then return 2 end
if session[1] ~= ARGV[2] then return 0 end
redis.call('DEL', KEYS[1])
redis.call('ZREM', KEYS[2 + session[2]], ARGV[3])
return 1)"));
    return script;
}

const store::Script& look() {
    static const store::Script script(script_of(R"(
local session = redis.call('HMGET', KEYS[1], 'v', 'u', 'm', 'l', 'c')
if not session[1] then return false end
local order = KEYS[2 + session[5]]
if tonumber(session[2]) <= now then
  local ends = redis.call('ZSCORE', order, ARGV[3])
  if not ends or tonumber(ends) <= now or now - session[3] >= tonumber(ARGV[2]) then
    return false
  end
end
local ends = math.min(now + session[4], session[3] + ARGV[2])
redis.call('ZADD', order, ends, ARGV[3])
redis.call('PEXPIRE', KEYS[1], math.max(ends - now, 0) + afterlife)
return session[1])"));
    return script;
}

const store::Script& take() {
    static const store::Script script(script_of(lua_take_one, R"(
for i = 1, 3 do
  local left = ARGV[2] - #ended / 2
  local names = left > 0 and redis.call('ZRANGEBYSCORE', KEYS[i], '-inf', now, 'LIMIT', 0, left)
  for _, name in ipairs(names or {}) do take_one(KEYS[i], name) end
end
return ended)"));
    return script;
}

}  // namespace orvo::web::session_scripts
