// Search filters. The input is the text of one, in UTF-8.

#include <algorithm>
#include <utility>
#include <vector>

#include "suite/directory/filters/filter.h"
#include "suite/directory/filters/filter_match.h"
#include "suite/directory/filters/filter_split.h"
#include "suite/directory/filters/matching_rule.h"
#include "suite/directory/names/ascii.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

using namespace orvo::directory;
using Kind = Filter::Kind;

void append_octets(std::string& text, std::string_view octets) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    for (const char c : octets) {
        const auto octet = static_cast<unsigned char>(c);
        text += {'\\', digits[octet >> 4], digits[octet & 15]};
    }
}

std::string_view operator_of(const Filter& filter) {
    switch (filter.kind) {
        case Kind::at_least:
            return " >= ";
        case Kind::at_most:
            return " <= ";
        case Kind::similar:
            return " ~= ";
        case Kind::extensible:
            return " := ";
        default:
            return " = ";
    }
}

// Every octet of the values escaped, and blanks wherever they may stand.
void append_spelled_out(std::string& text, const Filter& filter) {
    text += " (\t";
    if (filter.kind == Kind::all_of) text += " & ";
    if (filter.kind == Kind::any_of) text += " | ";
    if (filter.kind == Kind::negation) text += " ! ";
    if (filter.kind > Kind::negation) {
        text += filter.attribute;
        if (filter.of_name) text += " : DN ";
        if (!filter.rule.empty()) text += " : " + filter.rule;
        text += operator_of(filter);
        if (filter.kind == Kind::presence) text += " ** ";
        append_octets(text, filter.value);
        for (std::size_t at = 0; at < filter.pieces.size(); ++at) {
            if (at > 0) text += "**";
            append_octets(text, filter.pieces[at]);
        }
    }
    for (const Filter& part : filter.parts) append_spelled_out(text, part);
    text += "\r\n) ";
}

// Entries of which each attribute has the values that the filter asks for.
class AskedEntry : public MatchedEntry {
public:
    explicit AskedEntry(const Filter& filter) { add(filter); }

    void append_values(std::string_view attribute,
                       std::vector<std::string_view>& values) const override {
        for (const auto& [name, value] : values_)
            if (ascii::equal_ignoring_case(name, attribute)) values.push_back(value);
    }
    void append_attributes(std::vector<std::string_view>& names) const override {
        for (const auto& [name, value] : values_) names.push_back(name);
    }
    void append_name_values(std::string_view attribute,
                            std::vector<std::string_view>& values) const override {
        append_values(attribute, values);
    }
    void append_name_attributes(std::vector<std::string_view>& names) const override {
        append_attributes(names);
    }

private:
    void add(const Filter& filter) {
        std::string value = filter.value;
        for (const std::string& piece : filter.pieces) value += piece + "x";
        if (!filter.attribute.empty()) {
            values_.emplace_back(filter.attribute, value);
            values_.emplace_back(filter.attribute, "a B");
        }
        for (const Filter& part : filter.parts) add(part);
    }

    std::vector<std::pair<std::string, std::string>> values_;
};

std::optional<AttributeMatching> any_rule(std::string_view attribute) {
    if (attribute == "objectClass") return AttributeMatching{};
    const std::size_t rule = attribute.size() % 9;
    if (rule == 8) return std::nullopt;
    return AttributeMatching{static_cast<MatchingRule>(rule), true, true, attribute.size() > 9};
}

Truth truth_of(const Filter& filter, const MatchedEntry& entry) {
    return FilterMatcher(filter, any_rule).evaluate(entry);
}

Filter negated(Filter filter) { return {.kind = Kind::negation, .parts = {std::move(filter)}}; }

// By way of the parts.
Filter denied(const Filter& filter) {
    if (filter.kind == Kind::negation) return filter.parts.front();
    if (filter.kind > Kind::negation) return negated(filter);
    Filter result{filter.kind == Kind::all_of ? Kind::any_of : Kind::all_of};
    for (const Filter& part : filter.parts) result.parts.push_back(denied(part));
    return result;
}

Filter in_other_letters(Filter filter) {
    for (char& c : filter.attribute) c = ascii::is_letter(c) ? static_cast<char>(c ^ 0x20) : c;
    for (char& c : filter.rule) c = ascii::is_letter(c) ? static_cast<char>(c ^ 0x20) : c;
    for (Filter& part : filter.parts) part = in_other_letters(std::move(part));
    return filter;
}

void check_truth(const Filter& filter, const MatchedEntry& entry) {
    const Truth truth = truth_of(filter, entry);
    require(truth_of(in_other_letters(filter), entry) == truth,
            "what a filter finds does not go by the letters of names");
    const Truth denial = truth_of(negated(filter), entry);
    require(truth_of(denied(filter), entry) == denial, "a filter is denied by its parts, too");
    require(denial == (truth == Truth::undefined ? Truth::undefined
                       : truth == Truth::yes     ? Truth::no
                                                 : Truth::yes),
            "a filter that is denied is the opposite");
}

// Each piece for itself is found in the value that the pieces make.
void check_pieces(const Filter& filter) {
    std::string value;
    for (const std::string& piece : filter.pieces) value += piece;
    for (std::size_t at = 0; at < filter.pieces.size(); ++at) {
        std::vector<std::string> alone(filter.pieces.size());
        alone[at] = filter.pieces[at];
        if (at > 0 && at + 1 < alone.size()) alone = {"", filter.pieces[at], ""};
        for (const MatchingRule rule :
             {MatchingRule::case_ignore, MatchingRule::case_exact, MatchingRule::telephone}) {
            const auto key = matching_key(rule, value);
            const auto keys = piece_keys(rule, alone);
            require(!key || !keys || has_pieces(*key, *keys),
                    "a piece is found in the value that it is one of");
        }
    }
    for (const Filter& part : filter.parts) check_pieces(part);
}

void check_split(const Filter& filter, const MatchedEntry& entry) {
    const SplitFilter halves = split(filter, [](const Filter& item) {
        return item.kind == Kind::at_least || item.kind == Kind::substrings;
    });
    if (halves.sent == Filter{.kind = Kind::presence, .attribute = "objectClass"}) return;
    const bool is_sent = truth_of(halves.sent, entry) == Truth::yes;
    const bool is_kept = !halves.kept || truth_of(*halves.kept, entry) == Truth::yes;
    require((is_sent && is_kept) == (truth_of(filter, entry) == Truth::yes),
            "the halves of a filter together are the whole");
}

}  // namespace

void filter_properties(std::string_view input) {
    const Text text = from_utf8(input);
    Filter filter;
    try {
        filter = Filter::parse(text);
    } catch (const Failure& failure) {
        return require_refusal(failure, error_number(0x8007203E), "Character ", text.size() + 1);
    }
    const std::string strict = filter.text();
    const Text strict_text = from_utf8(strict);
    require(to_utf8(strict_text) == strict, "the text of a filter is UTF-8");
    require(Filter::parse(strict_text) == filter, "a filter is read back from its text");
    std::string spelled_out;
    append_spelled_out(spelled_out, filter);
    require(Filter::parse(from_utf8(spelled_out)) == filter,
            "a filter is the same with every octet escaped");
    const AskedEntry asked(filter);
    check_truth(filter, asked);
    check_split(filter, asked);
    check_pieces(filter);
    check_truth(filter, AskedEntry(Filter{.kind = Kind::presence, .attribute = "cn"}));
}

}  // namespace orvo::fuzz
