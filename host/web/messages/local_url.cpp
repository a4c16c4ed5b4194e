#include "host/web/messages/local_url.h"

#include <algorithm>

namespace orvo::web {

bool is_local_url(TextView url) {
    if (!url.starts_with(u'/') || url.starts_with(u"//")) return false;
    // Browsers read "\" as "/", and pass over tabs and line ends wherever they stand.
    return std::ranges::none_of(
        url, [](char16_t unit) { return unit < 0x20 || unit == 0x7F || unit == u'\\'; });
}

}  // namespace orvo::web
