#include "suite/throttle/redis_counters.h"

namespace orvo::throttle {
namespace {

using store::Script;

// What a Budget and the limits are, as memory_counters.cpp has it. A budget is the text
// "<until> <under way> <begun>"; that of a known address has the latest login in front.
const std::string rules = R"(
local now = tonumber(ARGV[1])
if not now then
    local time = redis.call('TIME')
    now = time[1] * 1000 + math.floor(time[2] / 1000)
end
local address = ARGV[2]
local user_most, user_each = tonumber(ARGV[3]), tonumber(ARGV[4])
local address_most, address_each = tonumber(ARGV[5]), tonumber(ARGV[6])
local known_for, longest_attempt = tonumber(ARGV[7]), tonumber(ARGV[8])

local KNOWN, UNKNOWN, PROGRAMS = 0, 1, 2
local RIGHT, WRONG = 0, 1

local function read(text)
    local numbers = {}
    for number in string.gmatch(text or '', '%d+') do
        numbers[#numbers + 1] = tonumber(number)
    end
    local login
    if #numbers == 4 then
        login = table.remove(numbers, 1)
    end
    return {login = login, till = numbers[1] or 0, under_way = numbers[2] or 0,
            begun = numbers[3] or 0}
end
local function written(budget)
    local text = string.format('%.0f %.0f %.0f', budget.till, budget.under_way, budget.begun)
    return budget.login and string.format('%.0f ', budget.login) .. text or text
end
local function load(field)
    return read(redis.call('HGET', KEYS[1], field))
end
local function save(field, budget)
    redis.call('HSET', KEYS[1], field, written(budget))
end

local function wrong(budget, each)
    return budget.till <= now and 0 or math.ceil((budget.till - now) / each)
end
local function under_way(budget)
    return now - budget.begun < longest_attempt and budget.under_way or 0
end
local function room(budget, most, each)
    local count = wrong(budget, each)
    if count >= most then
        return 2
    end
    return count + under_way(budget) >= most and 1 or 0
end
local function free_in(budget, most, each)
    return math.max(budget.till - now - (most - 1) * each, 0)
end
local function cut_to(budget, most, each)
    local till, begun = budget.till, budget.begun
    budget.till = math.min(till, now + most * each)
    budget.begun = math.min(begun, now)
    return budget.till ~= till or budget.begun ~= begun
end
local function begin(budget)
    budget.under_way = under_way(budget) + 1
    budget.begun = now
end
local function finish(budget, outcome, most, each)
    budget.under_way = math.max(under_way(budget) - 1, 0)
    if outcome == WRONG then
        budget.till = math.min(math.max(budget.till, now) + each, now + most * each)
    end
end

local function is_known(budget)
    return budget.login and now - budget.login < known_for
end
local function source()
    if address == '' then
        return PROGRAMS
    end
    return is_known(load('k' .. address)) and KNOWN or UNKNOWN
end
local function field_of(source)
    return source == KNOWN and 'k' .. address or source == UNKNOWN and 'u' or 'p'
end

local function last_use(budget)
    local last = math.max(budget.till, under_way(budget) > 0 and budget.begun + longest_attempt or 0)
    return math.max(last, budget.login and budget.login + known_for or 0)
end
local function keep_user()
    local all, last = redis.call('HGETALL', KEYS[1]), now
    for i = 1, #all, 2 do
        local use = last_use(read(all[i + 1]))
        if use <= now then
            redis.call('HDEL', KEYS[1], all[i])
        end
        last = math.max(last, use)
    end
    if last > now then
        redis.call('PEXPIRE', KEYS[1], last - now)
    end
end
local function keep_address(budget)
    local rest = last_use(budget) - now
    if rest > 0 then
        redis.call('SET', KEYS[2], written(budget), 'PX', rest)
    else
        redis.call('DEL', KEYS[2])
    end
end
)";

const Script& reserve_script() {
    static const Script script(rules + R"(
local from = source()
local mine, of_address = load(field_of(from)), nil
if cut_to(mine, user_most, user_each) then
    save(field_of(from), mine)
    keep_user()
end
local place = room(mine, user_most, user_each)
if from == UNKNOWN and KEYS[2] then
    of_address = read(redis.call('GET', KEYS[2]))
    if cut_to(of_address, address_most, address_each) then
        keep_address(of_address)
    end
    local place_of_address = room(of_address, address_most, address_each)
    if place_of_address == 1 and 2 * wrong(of_address, address_each) >= address_most then
        place_of_address = 2
    end
    place = math.max(place, place_of_address)
end
if place == 0 then
    begin(mine)
    save(field_of(from), mine)
    keep_user()
    if of_address then
        begin(of_address)
        keep_address(of_address)
    end
end
return {place, from, wrong(mine, user_each)}
)");
    return script;
}

const Script& settle_script() {
    static const Script script(rules + R"(
local from, outcome, most_known = tonumber(ARGV[9]), tonumber(ARGV[10]), tonumber(ARGV[11])
local field = field_of(from)
if from == KNOWN and not is_known(load(field)) then
    field = field_of(UNKNOWN)
end
local mine = load(field)
finish(mine, outcome, user_most, user_each)
if outcome == RIGHT and from ~= UNKNOWN then
    mine.till = 0
end
save(field, mine)
if outcome == RIGHT and address ~= '' then
    local known = load(field_of(KNOWN))
    known.login = now
    save(field_of(KNOWN), known)
    local all, count, oldest, since = redis.call('HGETALL', KEYS[1]), 0, nil, now + 1
    for i = 1, #all, 2 do
        local login = read(all[i + 1]).login
        if login then
            count = count + 1
            if login < since and all[i] ~= field_of(KNOWN) then
                oldest, since = all[i], login
            end
        end
    end
    if count > most_known then
        redis.call('HDEL', KEYS[1], oldest)
    end
end
keep_user()
if from == UNKNOWN and KEYS[2] then
    local of_address = read(redis.call('GET', KEYS[2]))
    finish(of_address, outcome, address_most, address_each)
    keep_address(of_address)
end
return 0
)");
    return script;
}

const Script& clear_script() {
    static const Script script(rules + R"(
local all, had_any = redis.call('HGETALL', KEYS[1]), 0
for i = 1, #all, 2 do
    local budget = read(all[i + 1])
    if budget.till > now then
        had_any = 1
    end
    budget.till = 0
    save(all[i], budget)
end
return had_any
)");
    return script;
}

const Script& clear_address_script() {
    static const Script script(rules + R"(
local of_address = read(redis.call('GET', KEYS[2]))
if of_address.till <= now then
    return 0
end
of_address.till = 0
redis.call('SET', KEYS[2], written(of_address), 'KEEPTTL')
return 1
)");
    return script;
}

const Script& state_script() {
    static const Script script(rules + R"(
local rows, from = {}, source()
local function add(of, budget, most, each, is_asked)
    for _, number in ipairs({of, wrong(budget, each), most, free_in(budget, most, each),
                             is_asked and 1 or 0}) do
        rows[#rows + 1] = number
    end
end
add(0, load('u'), user_most, user_each, from == UNKNOWN)
add(1, load('p'), user_most, user_each, from == PROGRAMS)
local all = redis.call('HGETALL', KEYS[1])
for i = 1, #all, 2 do
    local budget = read(all[i + 1])
    if is_known(budget) then
        add(2, budget, user_most, user_each, all[i] == 'k' .. address)
    end
end
if address ~= '' then
    add(3, read(redis.call('GET', KEYS[2])), address_most, address_each, from == UNKNOWN)
end
return rows
)");
    return script;
}

std::string decimal(std::chrono::milliseconds time) { return std::to_string(time.count()); }

std::vector<std::int64_t> numbers_of(const store::Reply& reply) {
    std::vector<std::int64_t> numbers;
    for (const store::Reply& number : reply.list()) numbers.push_back(number.integer());
    return numbers;
}

}  // namespace

std::string RedisCounters::name_of(const std::string& guessable) const {
    return site_->keyring.names_of(guessable).front();
}

std::vector<std::string> RedisCounters::keys(const Attempt& attempt) const {
    std::vector<std::string> keys{redis_.key("throttle:user", name_of(attempt.user))};
    if (!attempt.address.empty() && !attempt.is_of_user_only)
        keys.push_back(redis_.key("throttle:address", name_of(attempt.address)));
    return keys;
}

std::string RedisCounters::time() const { return now_ ? decimal(now_()) : std::string(); }

std::vector<std::string> RedisCounters::arguments(const Attempt& attempt,
                                                  const Limits& limits) const {
    return {time(),
            attempt.address.empty() ? std::string() : name_of(attempt.address),
            std::to_string(limits.user.most),
            decimal(limits.user.each),
            std::to_string(limits.address.most),
            decimal(limits.address.each),
            decimal(limits.known_for),
            decimal(longest_attempt)};
}

Place RedisCounters::reserve(const Attempt& attempt, const Limits& limits) {
    const auto numbers =
        numbers_of(redis_.run(reserve_script(), keys(attempt), arguments(attempt, limits)));
    return {.room = static_cast<Room>(numbers.at(0)),
            .source = static_cast<Source>(numbers.at(1)),
            .wrong = static_cast<int>(numbers.at(2))};
}

void RedisCounters::settle(const Attempt& attempt, const Place& place, Outcome outcome,
                           const Limits& limits) {
    std::vector<std::string> all = arguments(attempt, limits);
    all.push_back(std::to_string(static_cast<int>(place.source)));
    all.push_back(std::to_string(static_cast<int>(outcome)));
    all.push_back(std::to_string(most_known_addresses));
    redis_.run(settle_script(), keys(attempt), all);
}

bool RedisCounters::clear(const std::string& user) {
    return redis_.run_repeatable(clear_script(), keys({user, {}}), {time(), ""}).integer() != 0;
}

bool RedisCounters::clear_address(const std::string& address) {
    return redis_.run_repeatable(clear_address_script(), keys({{}, address}), {time(), ""})
               .integer() != 0;
}

std::vector<CountedBudget> RedisCounters::state(const Attempt& attempt, const Limits& limits) {
    constexpr std::size_t columns = 5;
    const auto numbers = numbers_of(
        redis_.run_repeatable(state_script(), keys(attempt), arguments(attempt, limits)));
    std::vector<CountedBudget> all;
    for (std::size_t row = 0; row + columns <= numbers.size(); row += columns)
        all.push_back({static_cast<CountedBudget::Of>(numbers[row]),
                       static_cast<int>(numbers[row + 1]), static_cast<int>(numbers[row + 2]),
                       std::chrono::milliseconds(numbers[row + 3]), numbers[row + 4] != 0});
    return all;
}

}  // namespace orvo::throttle
