#include "platform/values/text_order.h"

#include <algorithm>
#include <iterator>

#include "platform/values/case_folding.h"

namespace orvo {
namespace {

constexpr char16_t no_accent = u'\u0001';

// The letters below the accents, from `first` on; a blank where there is none.
struct Letters {
    char16_t first;
    TextView bases;
};

// clang-format off
constexpr Letters accented[] = {
    {0x00E0, u"aaaaaa ceeeeiiiidnooooo ouuuuy y a a a c c c c d d e e e e e g g g g h h i i i i"
             u"ii   j k  l l l   l n n n    o o o   r r r s s s s t t t u u u u u u w y  z z z "},
    {0x01A0, u" o              u                             a i o u u u u u  a a æ   g k o o ʒ"
             u"j    g   n a æ o a a e e i i o o r r u u s t   h       a e o o o o y"},
    {0x0390, u"ι                           αεηιυ                         ιυουω"},
    {0x0430, u"         и                      ее г   і    киу "},
    {0x1E00, u" a b b b c d d d d d e e e e e f g h h h h h i i k k k l l l l m m m n n n n o o"
             u" o o p p r r r r s s s s s t t t t u u u u u v v w w w w w x x y z z zhtwy      "
             u" a a a a a a a a a a a a e e e e e e e e i i o o o o o o o o o o o o u u u u u u"
             u" u y y y y      "},
};

struct Ligature {
    char16_t sign;
    TextView letters;
};
constexpr Ligature ligatures[] = {{u'ß', u"ss"}, {u'æ', u"ae"}, {u'œ', u"oe"}, {u'þ', u"th"}};
// clang-format on

bool is_mark(char16_t unit) { return unit >= 0x0300 && unit <= 0x036F; }

char16_t base_of(char16_t small) {
    for (const Letters& range : accented) {
        if (small < range.first || small - range.first >= static_cast<int>(range.bases.size()))
            continue;
        const char16_t base = range.bases[static_cast<std::size_t>(small - range.first)];
        return base == u' ' ? small : base;
    }
    return small;
}

// Calls visit(letter, accent) for every letter, or other character, of the text; a mark that stands
// behind its letter is an accent without a letter (0).
template <class Visit>
void for_each_letter(TextView text, Visit visit) {
    for (const char16_t unit : text) {
        const char16_t small = detail::folded(unit);
        if (small < 0x80) {
            visit(small, no_accent);
            continue;
        }
        if (is_mark(small)) {
            visit(u'\0', small);
            continue;
        }
        const char16_t base = base_of(small);
        const char16_t accent = base == small ? no_accent : small;
        const auto both = std::ranges::find(ligatures, base, &Ligature::sign);
        if (both == std::end(ligatures)) {
            visit(base, accent);
        } else {
            visit(both->letters[0], small);
            visit(both->letters[1], no_accent);
        }
    }
}

bool is_ascii(TextView text) {
    return std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; });
}

// In the order of characters: surrogates, of which those behind U+FFFF are made, come last.
std::uint32_t place_of(char16_t unit) {
    if (unit == u'!') return 0;
    return (unit & 0xF800) == 0xD800 ? unit + 0x10000u : unit + 1u;
}

template <class Place>
int compared(TextView a, TextView b, Place place) {
    const auto [in_a, in_b] =
        std::mismatch(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char16_t x, char16_t y) { return place(x) == place(y); });
    if (in_a == a.end()) return in_b == b.end() ? 0 : -1;
    if (in_b == b.end()) return 1;
    return place(*in_a) < place(*in_b) ? -1 : 1;
}

}  // namespace

Text letters_of(TextView text) {
    Text letters;
    letters.reserve(text.size());
    for_each_letter(text, [&](char16_t letter, char16_t) {
        if (letter != 0) letters += letter;
    });
    return letters;
}

Text accents_of(TextView text) {
    Text accents;
    if (is_ascii(text)) return accents;
    for_each_letter(text, [&](char16_t, char16_t accent) { accents += accent; });
    accents.erase(accents.find_last_not_of(no_accent) + 1);
    return accents;
}

int compare_at(OrderLevel level, TextView a, TextView b) {
    const bool are_ascii = is_ascii(a) && is_ascii(b);
    switch (level) {
        case OrderLevel::letters:
            if (are_ascii)
                return compared(a, b, [](char16_t unit) { return place_of(detail::folded(unit)); });
            return compared(letters_of(a), letters_of(b), place_of);
        case OrderLevel::accents:
            return are_ascii ? 0 : compared(accents_of(a), accents_of(b), place_of);
        case OrderLevel::spelling:
            return compared(a, b, place_of);
    }
    return 0;
}

}  // namespace orvo
