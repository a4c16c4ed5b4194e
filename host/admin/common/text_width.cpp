#include "host/admin/common/text_width.h"

#include <locale.h>
#include <wchar.h>

#include <memory>
#include <type_traits>

namespace orvo::admin {
namespace {

struct FreeLocale {
    void operator()(locale_t locale) const { ::freelocale(locale); }
};

// The widths of Unicode, whatever the user's locale is.
class UnicodeScope {
public:
    UnicodeScope() {
        static const std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale> unicode(
            ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr));
        if (unicode) before_ = ::uselocale(unicode.get());
    }
    ~UnicodeScope() {
        if (before_) ::uselocale(before_);
    }
    UnicodeScope(const UnicodeScope&) = delete;
    UnicodeScope& operator=(const UnicodeScope&) = delete;

private:
    locale_t before_ = nullptr;
};

struct Character {
    std::size_t size = 1;   // in bytes
    std::size_t width = 1;  // in columns
};

// What is no UTF-8 stands as one sign for each byte.
Character first_of(std::string_view text) {
    wchar_t wide = 0;
    mbstate_t state{};
    const std::size_t size = ::mbrtowc(&wide, text.data(), text.size(), &state);
    if (size == 0 || size > text.size()) return {};
    const int width = ::wcwidth(wide);
    return {size, width < 0 ? std::size_t{1} : static_cast<std::size_t>(width)};
}

}  // namespace

std::size_t width_of(std::string_view text) {
    const UnicodeScope scope;
    std::size_t width = 0;
    while (!text.empty()) {
        const Character next = first_of(text);
        width += next.width;
        text.remove_prefix(next.size);
    }
    return width;
}

std::string cut_to(std::string_view text, std::size_t width) {
    const UnicodeScope scope;
    std::size_t taken = 0, kept = 0;
    for (std::size_t at = 0; at < text.size();) {
        const Character next = first_of(text.substr(at));
        taken += next.width;
        at += next.size;
        if (taken > width) return width == 0 ? "" : std::string(text.substr(0, kept)) + "…";
        if (taken < width) kept = at;
    }
    return std::string(text);
}

}  // namespace orvo::admin
