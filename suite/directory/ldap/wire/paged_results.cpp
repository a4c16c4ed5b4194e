#include "suite/directory/ldap/wire/paged_results.h"

#include <utility>

#include "suite/directory/ldap/wire/ber.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::directory::ldap {

std::string paged_results_value(int page_size, std::string_view page) {
    const std::string size = ber::content_of(page_size);
    std::string content = ber::header(ber::integer, size.size()) + size;
    content += ber::header(ber::octet_string, page.size());
    content += page;
    return ber::header(ber::sequence, content.size()) + content;
}

std::optional<std::string> try_next_page(std::span<const Control> controls) {
    for (const Control& control : controls) {
        if (control.oid != paged_results_oid) continue;
        std::string_view bytes = control.value;
        const auto sequence = ber::take_element(bytes);
        if (!sequence || sequence->tag != ber::sequence) return std::nullopt;
        std::string_view rest = sequence->content;
        const auto estimate = ber::take_element(rest);
        const auto page = ber::take_element(rest);
        if (!estimate || !page || page->tag != ber::octet_string) return std::nullopt;
        return std::string(page->content);
    }
    return "";
}

SearchResult paged(Result result, std::span<const Control> controls) {
    if (!result.ok()) return {std::move(result), {}};
    std::optional<std::string> next = try_next_page(controls);
    if (!next) return {{result_code::decoding_error, {}, {}}, {}};
    return {std::move(result), std::move(*next)};
}

Result collect_pages(Session& session, SearchRequest request, int page_size,
                     const std::function<void(EntryData&&)>& take) {
    request.page_size = page_size;
    for (;;) {
        bool is_empty = true;
        SearchResult result = session.search(request, [&](EntryData&& entry) {
            is_empty = false;
            take(std::move(entry));
        });
        const bool is_first = request.page.empty();
        if (result.code == result_code::admin_limit_exceeded && is_first && is_empty &&
            request.page_size > 0) {
            request.page_size /= 10;
            continue;
        }
        if (!result.ok() || result.next_page.empty()) return result;
        if (is_empty && result.next_page == request.page)
            return {result_code::decoding_error, "The pages of the answer have no end.", {}};
        request.page = std::move(result.next_page);
    }
}

}  // namespace orvo::directory::ldap
