#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tests/support/http_client.h"

namespace orvo::fleet {

// What an answer of the sample shop says to the person at the browser.
class ShopPage {
public:
    // Raises std::runtime_error where there is no answer.
    explicit ShopPage(const HttpResult& answer);

    int status() const { return status_; }
    // Where a redirect leads to, without the host; otherwise empty.
    const std::string& location() const { return location_; }
    bool leads_to_login() const { return location_.starts_with("/login.asp"); }

    // Each empty where the page has none.
    std::string user() const { return text_behind("<b id=\"user\">"); }
    std::string own_name() const { return text_behind("<dd id=\"cn\">"); }
    std::string problem() const;
    // What stands in a form carries it as its proof of origin.
    std::string token() const;
    // What a browser sends with the form of this address, as it stands.
    std::optional<HttpFields> form(std::string_view action) const;

private:
    std::string text_behind(std::string_view mark) const;

    int status_;
    std::string location_;
    std::string body_;
};

// The value of a form's field; empty where it has none of this name.
std::string value_of(const HttpFields& form, std::string_view name);

}  // namespace orvo::fleet
