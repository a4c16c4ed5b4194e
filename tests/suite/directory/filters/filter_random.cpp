#include "tests/suite/directory/filters/filter_random.h"

#include <iterator>

namespace orvo::directory {
namespace {

using Kind = Filter::Kind;

constexpr const char* attributes[] = {"cn", "OrvoUserType", "cn;lang-de", "2.5.4.3", "x-1;y;2"};
constexpr const char* rules[] = {"caseExactMatch", "2.5.13.2", "integerMatch"};
constexpr Kind items[] = {Kind::equality, Kind::presence, Kind::substrings, Kind::at_least,
                          Kind::at_most,  Kind::similar,  Kind::extensible};
constexpr const char* words[] = {"a", "B", " ", "(",    ")", "*", "\\",
                                 "!", "=", "'", "\\2a", "é", "日"};
constexpr char16_t meaningful[] = u"()&|!=<>~:*\\ \t'a0;.-\u00E9\xD800\xDC00";

}  // namespace

std::size_t FilterDice::roll(std::size_t sides) {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::size_t>(state_ >> 33) % sides;
}

std::string FilterDice::octets(std::size_t at_least) {
    std::string result;
    for (std::size_t count = at_least + roll(5); count > 0; --count) {
        if (roll(4) == 0)
            result += static_cast<char>(roll(256));
        else
            result += one_of(words);
    }
    return result;
}

Filter FilterDice::item() {
    Filter filter{one_of(items)};
    filter.attribute = one_of(attributes);
    if (filter.kind == Kind::substrings) {
        filter.pieces.push_back(octets(0));
        for (std::size_t count = roll(3); count > 0; --count) filter.pieces.push_back(octets(1));
        filter.pieces.push_back(octets(filter.pieces.size() == 1 ? 1 : 0));
    } else if (filter.kind != Kind::presence) {
        filter.value = octets(0);
    }
    if (filter.kind == Kind::extensible) {
        filter.of_name = roll(2) == 0;
        if (roll(2) == 0) filter.rule = one_of(rules);
        if (!filter.rule.empty() && roll(2) == 0) filter.attribute.clear();
    }
    return filter;
}

Filter FilterDice::tree(int levels) {
    if (levels <= 1 || roll(3) == 0) return item();
    Filter filter{static_cast<Kind>(roll(3))};
    const std::size_t count = filter.kind == Kind::negation ? 1 : roll(4);
    for (std::size_t i = 0; i < count; ++i) filter.parts.push_back(tree(levels - 1));
    return filter;
}

Text FilterDice::changed(TextView text, TextView other) {
    Text result(text);
    for (std::size_t changes = 1 + roll(4); changes > 0; --changes) {
        const std::size_t at = roll(result.size() + 1);
        const std::size_t length = roll(8);
        const char16_t c = meaningful[roll(std::size(meaningful))];  // the NUL at its end as well
        switch (roll(5)) {
            case 0:
                result.insert(at, 1, c);
                break;
            case 1:
                result.erase(at, length);
                break;
            case 2:
                if (at < result.size()) result[at] = c;
                break;
            case 3:
                result.insert(at, result.substr(at, length));
                break;
            default:
                result.insert(at, other.substr(roll(other.size() + 1), length));
                break;
        }
    }
    return result;
}

}  // namespace orvo::directory
