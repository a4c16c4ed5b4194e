#include "suite/directory/entries/login_name.h"

#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_form.h"

namespace orvo::directory {
namespace {

[[noreturn]] void refuse(std::string_view why) {
    raise_code(result_code::invalid_credentials, why);
}

}  // namespace

std::string login_name(TextView user, const Secret& password) {
    if (password.empty() && !user.empty()) refuse("A password is required.");
    // In UTF-8 they would be those of others.
    if (!is_well_formed(user)) refuse("The user's name holds half of a surrogate pair.");
    if (!password.is_well_formed()) refuse("The password holds half of a surrogate pair.");
    if (const auto why = unusable(password)) refuse(why->sentence);
    const Text name = full_name(user);
    // A client library would read on only as far as there.
    if (name.find(u'\0') != Text::npos) refuse("The user's name holds a NUL.");
    return to_utf8(name);
}

}  // namespace orvo::directory
