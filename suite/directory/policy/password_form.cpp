#include "suite/directory/policy/password_form.h"

#include "suite/directory/policy/result_codes.h"

namespace orvo::directory {

std::optional<UnusablePassword> unusable(const Secret& password) {
    const std::string_view bytes = password.reveal();
    if (bytes.size() > longest_password)
        return UnusablePassword{result_code::constraint_violation,
                                "A password cannot have more than 65536 bytes."};
    if (bytes.find('\0') != std::string_view::npos)
        return UnusablePassword{result_code::invalid_syntax, "A password cannot hold a NUL."};
    return std::nullopt;
}

}  // namespace orvo::directory
