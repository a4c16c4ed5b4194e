#include "bench/fleet/shop_page.h"

#include <array>

namespace orvo::fleet {
namespace {

// What stands between two marks, from `from` on.
std::optional<std::string_view> between(std::string_view text, std::string_view left,
                                        std::string_view right) {
    const std::size_t begin = text.find(left);
    if (begin == std::string_view::npos) return std::nullopt;
    const std::size_t end = text.find(right, begin + left.size());
    if (end == std::string_view::npos) return std::nullopt;
    return text.substr(begin + left.size(), end - begin - left.size());
}

std::string without_entities(std::string_view text) {
    static constexpr std::array<std::pair<std::string_view, char>, 5> entities{
        {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&#39;", '\''}}};
    std::string plain;
    while (!text.empty()) {
        std::size_t taken = 1;
        char sign = text.front();
        for (const auto& [entity, meant] : entities)
            if (text.starts_with(entity)) {
                taken = entity.size();
                sign = meant;
            }
        plain += sign;
        text.remove_prefix(taken);
    }
    return plain;
}

std::string attribute(std::string_view tag, const std::string& name) {
    return without_entities(between(tag, " " + name + "=\"", "\"").value_or(""));
}

}  // namespace

ShopPage::ShopPage(const HttpResult& answer)
    : status_(answer->status),
      location_(answer->get_header_value("Location")),
      body_(answer->body) {
    if (const std::size_t host = location_.find("://"); host != std::string::npos) {
        const std::size_t path = location_.find('/', host + 3);
        location_ = path == std::string::npos ? "/" : location_.substr(path);
    }
}

std::string ShopPage::problem() const {
    const auto message = between(body_, "<div class=\"message\" id=\"problem\"", "</div>");
    return message ? without_entities(between(*message, "<p>", "</p>").value_or("")) : "";
}

std::string ShopPage::token() const {
    return std::string(between(body_, "name=\"token\" value=\"", "\"").value_or(""));
}

std::optional<HttpFields> ShopPage::form(std::string_view action) const {
    const auto text = between(body_, "action=\"" + std::string(action) + "\"", "</form>");
    if (!text) return std::nullopt;
    HttpFields fields;
    std::string_view rest = *text;
    while (true) {
        const auto tag = between(rest, "<input", ">");
        if (!tag) return fields;
        rest.remove_prefix(static_cast<std::size_t>(tag->data() + tag->size() - rest.data()));
        const std::string name = attribute(*tag, "name");
        const bool is_box = tag->find("type=\"checkbox\"") != std::string_view::npos;
        if (!is_box)
            fields.emplace_back(name, attribute(*tag, "value"));
        else if (tag->find(" checked") != std::string_view::npos)
            fields.emplace_back(name, "on");
    }
}

std::string ShopPage::text_behind(std::string_view mark) const {
    return without_entities(between(body_, mark, "<").value_or(""));
}

std::string value_of(const HttpFields& form, std::string_view name) {
    for (const auto& [key, value] : form)
        if (key == name) return value;
    return "";
}

}  // namespace orvo::fleet
