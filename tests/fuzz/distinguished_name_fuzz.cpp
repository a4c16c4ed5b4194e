// Distinguished names. The input is a name, or what somebody wrote as one; behind a line end
// another one, as its container.

#include <algorithm>
#include <vector>

#include "suite/directory/names/distinguished_name.h"
#include "suite/directory/names/entry_key.h"
#include "suite/directory/names/listing_order.h"
#include "suite/directory/names/name_parts.h"
#include "suite/directory/names/written_name.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

using namespace orvo::directory;
using Parts = std::vector<RelativeName>;

std::optional<DistinguishedName> parsed(std::string_view text) {
    return DistinguishedName::try_parse(from_utf8(text));
}

// Every octet of the values escaped, and blanks wherever they may stand.
std::string spelled_out(const Parts& parts) {
    std::string text;
    for (const RelativeName& relative : parts) {
        if (!text.empty()) text += " , ";
        for (const NamePart& part : relative) {
            if (&part != &relative.front()) text += " + ";
            text += ' ' + part.attribute + " = ";
            for (const char c : part.value) {
                constexpr std::string_view digits = "0123456789abcdef";
                const auto octet = static_cast<unsigned char>(c);
                text += {'\\', digits[octet >> 4], digits[octet & 15]};
            }
        }
    }
    return text;
}

bool are_equal(const Parts& one, const Parts& other) {
    return std::ranges::equal(one, other, [](const RelativeName& a, const RelativeName& b) {
        return std::ranges::equal(a, b, [](const NamePart& x, const NamePart& y) {
            return x.attribute == y.attribute && x.value == y.value;
        });
    });
}

void check_parts(const DistinguishedName& name, Parts parts) {
    require(parts.size() == name.depth(), "a name has as many parts as it is deep");
    const std::string joined = joined_name(parts);
    require(parsed(joined) == name, "a name joined of its parts is the same name");
    require(parsed(spelled_out(parts)) == name, "a name with every octet escaped is the same name");
    const auto again = try_name_parts(joined);
    require(again && are_equal(*again, parts), "a joined name has the same parts");
    if (parts.empty()) return;

    for (RelativeName& relative : parts)
        for (NamePart& part : relative) part.attribute = "x-any";
    require(parsed(joined_name(parts)).value().loose_key() == name.loose_key(),
            "the loose key does not go by the types");
    parts.erase(parts.begin());
    require(parsed(joined_name(again->size() > 1 ? Parts(again->begin() + 1, again->end())
                                                 : Parts())) == name.parent(),
            "the parent is what stands behind the first part");
}

void check_ancestors(const DistinguishedName& name) {
    require(!name.is_below(name), "no name is below itself");
    DistinguishedName above = name;
    for (std::size_t depth = name.depth(); depth > 0; --depth) {
        above = above.parent();
        require(above.depth() == depth - 1, "a parent is one less deep");
        require(name.is_below(above), "a name is below those above it");
        require(!above.is_below(name), "no name is below one that is below it");
    }
    require(above.key().empty() && above.parent() == above, "the root is above all and itself");
}

void check_child(TextView value, TextView container, const DistinguishedName& above) {
    const auto child =
        DistinguishedName::try_parse(entry_name(u"cn=" + escaped_value(value), container));
    require(child && child->parent() == above, "any value names an entry below any name");
    require(child->is_below(above), "a child is below its parent");
    const Text plain = Text(u"cn=").append(value);
    const auto written = DistinguishedName::try_parse(entry_name(plain, container));
    require(written && written->is_below(above), "a plain name is one below any name");
    const Text full = plain + u',' + Text(container);
    require(full.size() > longest_name || DistinguishedName::try_parse(full_name(full)),
            "a plain name and its container are a name");
}

void check_name(std::string_view text) {
    const Text wide = from_utf8(text);
    const std::string whole = to_utf8(wide);
    const auto name = DistinguishedName::try_parse(wide);
    const auto parts = try_name_parts(whole);
    require(name || !parts, "what has parts is a name");
    if (!name) return;
    require(full_name(wide) == wide, "a name is a full name as it stands");
    require(EntryKey(whole).exact == name->key(), "an entry's key is that of its name");
    check_ancestors(*name);
    if (parts) check_parts(*name, *parts);
    if (name->depth() > 0) check_child(wide, wide, *name);
}

void check_below(TextView written, const Text& container) {
    const auto above = DistinguishedName::try_parse(container);
    if (!above) return;
    const std::optional<Text> below = name_below(written, *above);
    if (is_plain_below(written, container))
        require(below == written, "a plain name below a container is as it stands");
    if (!below) return;
    const auto name = DistinguishedName::try_parse(*below);
    require(name && name->is_below(*above), "a name below a container is below it");
    require(name_below(*below, *above).has_value(), "a name below a container stays one");
    if (above->depth() > 0) check_child(written, container, *above);
}

void check_order(std::string_view one, std::string_view other) {
    const std::string key = listing_key(one);
    const std::string other_key = listing_key(other);
    require((one == other) == (key == other_key), "values that differ have different keys");
    const ListingBound bound(one);
    require(one.ends_with('!') || (bound.is_reached_by(key) && bound.covers(key)),
            "a value is at its own bound");
    const ListingBound behind(std::string(one) + "!");
    require(behind.is_reached_by(other_key) == (other_key > key),
            "what is listed behind a value is what a bound behind it lets through");
}

}  // namespace

void distinguished_name_properties(std::string_view input) {
    const auto [first, second] = first_line_and_rest(input);
    check_name(input);
    check_name(first);
    check_name(second);
    const Text container = container_name(from_utf8(second));
    check_below(from_utf8(first), container);
    check_below(from_utf8(first) + u',' + container, container);
    check_order(first, second);
}

}  // namespace orvo::fuzz
