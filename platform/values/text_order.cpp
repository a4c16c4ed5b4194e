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

// Hands out the letters, or other characters, of the text one by one, and for each of them its
// accent. A mark that stands behind its letter is an accent without a letter.
template <class OnLetter, class OnAccent>
void for_each_letter(TextView text, OnLetter on_letter, OnAccent on_accent) {
    bool is_after_blank = true;
    for (const char16_t unit : text) {
        const char16_t small = detail::folded(unit);
        const bool is_superfluous = unit == u' ' && is_after_blank;
        is_after_blank = unit == u' ';
        if (is_superfluous) continue;
        if (is_mark(small)) {
            on_accent(small);
            continue;
        }
        const char16_t base = small < 0x80 ? small : base_of(small);
        const auto both = std::ranges::find(ligatures, base, &Ligature::sign);
        if (both == std::end(ligatures)) {
            on_letter(base);
            on_accent(base == small ? no_accent : small);
        } else {
            for (const char16_t letter : both->letters) on_letter(letter);
            on_accent(small);
            on_accent(no_accent);
        }
    }
}

// Whether folding the case leaves the letters of the text, as most often.
bool is_plain(TextView text) {
    bool is_after_blank = true;
    return std::ranges::all_of(text, [&](char16_t unit) {
        const bool is_superfluous = unit == u' ' && is_after_blank;
        is_after_blank = unit == u' ';
        return unit < 0x80 && !is_superfluous;
    });
}

TextView without_ending(TextView text) { return text.substr(0, text.size() - ending_of(text)); }

// In the order of characters: surrogates, of which those behind U+FFFF are made, come last.
std::uint32_t place_of(char16_t unit) { return (unit & 0xF800) == 0xD800 ? unit + 0x10000u : unit; }

template <class Place>
int compared(TextView a, TextView b, Place place) {
    const auto [in_a, in_b] =
        std::mismatch(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char16_t x, char16_t y) { return place(x) == place(y); });
    if (in_a == a.end()) return in_b == b.end() ? 0 : -1;
    if (in_b == b.end()) return 1;
    return place(*in_a) < place(*in_b) ? -1 : 1;
}

int compare_letters(TextView a, TextView b) {
    const TextView left = without_ending(a);
    const TextView right = without_ending(b);
    if (is_plain(left) && is_plain(right)) return compared(left, right, detail::folded);
    return compared(letters_of(a), letters_of(b), place_of);
}

}  // namespace

Text letters_of(TextView text) {
    Text letters;
    letters.reserve(text.size());
    for_each_letter(
        without_ending(text), [&](char16_t letter) { letters += letter; }, [](char16_t) {});
    return letters;
}

Text accents_of(TextView text) {
    Text accents;
    if (std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; })) return accents;
    for_each_letter(
        text, [](char16_t) {}, [&](char16_t accent) { accents += accent; });
    accents.erase(accents.find_last_not_of(no_accent) + 1);
    return accents;
}

std::size_t ending_of(TextView text) { return text.size() - (text.find_last_not_of(u'!') + 1); }

int compare_at(OrderLevel level, TextView a, TextView b) {
    switch (level) {
        case OrderLevel::letters:
            return compare_letters(a, b);
        case OrderLevel::accents:
            return compared(accents_of(a), accents_of(b), place_of);
        case OrderLevel::ending: {
            const std::size_t left = ending_of(a);
            const std::size_t right = ending_of(b);
            return left < right ? -1 : left > right ? 1 : 0;
        }
        case OrderLevel::spelling:
            return compared(a, b, place_of);
    }
    return 0;
}

int compare_up_to(OrderLevel last, TextView a, TextView b) {
    for (const OrderLevel level : order_levels) {
        if (level > last) break;
        if (const int order = compare_at(level, a, b)) return order;
    }
    return 0;
}

}  // namespace orvo
