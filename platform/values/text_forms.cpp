#include "platform/values/text_forms.h"

#include <algorithm>

#ifdef _WIN32
#include <windows.h>
#else
#include <unicase.h>
#include <unictype.h>
#include <uninorm.h>
#include <unistr.h>
#include <unitypes.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <new>
#endif

namespace orvo {
namespace {

enum class Form { composed, decomposed };  // NFKC, NFKD

#ifdef _WIN32

const wchar_t* wide(TextView text) { return reinterpret_cast<const wchar_t*>(text.data()); }
wchar_t* wide(Text& text) { return reinterpret_cast<wchar_t*>(text.data()); }
int length_of(TextView text) { return static_cast<int>(text.size()); }

// The system's first answer is an estimate, which a failure for lack of room betters.
Text normalized(TextView text, Form form) {
    const NORM_FORM rule = form == Form::composed ? NormalizationKC : NormalizationKD;
    Text result;
    int room = NormalizeString(rule, wide(text), length_of(text), nullptr, 0);
    while (room > 0) {
        result.resize(static_cast<std::size_t>(room));
        const int made = NormalizeString(rule, wide(text), length_of(text), wide(result), room);
        if (made > 0) {
            result.resize(static_cast<std::size_t>(made));
            return result;
        }
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER) break;
        room = std::max(-made, room + 1);
    }
    return Text(text);
}

Text mapped(TextView text, DWORD mapping) {
    Text result(text);
    LCMapStringEx(LOCALE_NAME_INVARIANT, mapping, wide(text), length_of(text), wide(result),
                  length_of(result), nullptr, nullptr, 0);
    return result;
}

Text lower_letters(TextView text) { return mapped(text, LCMAP_LOWERCASE); }

// Of decomposed text. The system maps letter by letter, and leaves a few alone.
Text case_folded(TextView text) {
    Text result;
    for (const char16_t c : mapped(mapped(text, LCMAP_UPPERCASE), LCMAP_LOWERCASE)) {
        if (c == u'\u00DF' || c == u'\u1E9E')
            result += u"ss";
        else
            result += c == u'\u03C2' ? u'\u03C3' : c == u'\u0345' ? u'\u03B9' : c;
    }
    return normalized(result, Form::decomposed);
}

// Halves of pairs have no kind of their own and count as letters.
void keep_letters_and_digits(Text& text) {
    std::erase_if(text, [](char16_t c) {
        WORD kind = 0;
        const wchar_t unit = c;
        const bool is_half = (c & 0xF800) == 0xD800;
        return !is_half && GetStringTypeW(CT_CTYPE1, &unit, 1, &kind) &&
               (kind & (C1_ALPHA | C1_DIGIT)) == 0;
    });
}

#else

const std::uint16_t* units(TextView text) {
    return reinterpret_cast<const std::uint16_t*>(text.data());
}

// What the library makes of a text, or where it cannot read the text, the text as it is.
template <class Make>
Text made_of(TextView text, Make make) {
    std::size_t length = 0;
    const std::unique_ptr<std::uint16_t, decltype(&std::free)> made(make(&length), &std::free);
    if (made) return Text(reinterpret_cast<const char16_t*>(made.get()), length);
    if (errno == ENOMEM) throw std::bad_alloc();
    return Text(text);
}

Text normalized(TextView text, Form form) {
    return made_of(text, [&](std::size_t* length) {
        return u16_normalize(form == Form::composed ? UNINORM_NFKC : UNINORM_NFKD, units(text),
                             text.size(), nullptr, length);
    });
}

Text case_folded(TextView text) {
    return made_of(text, [&](std::size_t* length) {
        return u16_casefold(units(text), text.size(), nullptr, UNINORM_NFKD, nullptr, length);
    });
}

// For each character what `change` makes of it; 0 leaves it out.
template <class Change>
Text each(TextView text, Change change) {
    Text result;
    for (std::size_t at = 0; at < text.size();) {
        ucs4_t point = 0;
        const int read = u16_mbtouc(&point, units(text) + at, text.size() - at);
        at += static_cast<std::size_t>(read);
        std::uint16_t written[2];
        if (const ucs4_t changed = change(point)) {
            const int count = u16_uctomb(written, changed, 2);
            result.append(written, written + count);
        }
    }
    return result;
}

Text lower_letters(TextView text) {
    return each(text, [](ucs4_t point) { return uc_tolower(point); });
}

void keep_letters_and_digits(Text& text) {
    text = each(text, [](ucs4_t point) -> ucs4_t {
        const std::uint32_t kinds = UC_CATEGORY_MASK_L | UC_CATEGORY_MASK_N;
        return uc_is_general_category_withtable(point, kinds) ? point : 0;
    });
}

#endif

}  // namespace

Text compatible_lower(TextView text) {
    if (text.empty()) return {};
    Text composed = normalized(text, Form::composed);
    const Text lower = lower_letters(composed);
    return lower == composed ? composed : normalized(lower, Form::composed);
}

Text letters_and_digits(TextView text) {
    if (text.empty()) return {};
    Text result = case_folded(normalized(text, Form::decomposed));
    keep_letters_and_digits(result);
    return result;
}

}  // namespace orvo
