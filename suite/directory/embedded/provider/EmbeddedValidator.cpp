#include "suite/directory/embedded/provider/EmbeddedValidator.h"

#include <string>

#include "suite/directory/entries/audited.h"
#include "suite/directory/entries/proven_password.h"
#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_form.h"

namespace orvo::directory::embedded {

void EmbeddedValidator::Open(Text& server, Text& user_container) {
    server_ = server;
    container_ = user_container;
    container_name_.reset();
    directory_.reset();
    is_open_ = true;
}

std::int32_t EmbeddedValidator::Validate(Variant& path, Variant& password) {
    if (!is_open_) raise_runtime_error(runtime_error::object_not_set);
    ProvenPassword::forget();
    const Text written = path.to<Text>();
    const auto secret = password.to<Secret>();
    return audited_check(server_, written, [&] { return check_password(written, secret); });
}

CheckAnswer EmbeddedValidator::check_password(TextView written, const Secret& secret) {
    if (!container_name_) {
        const Text container = container_name(container_);
        container_name_ = DistinguishedName::try_parse(container);
        if (!container_name_) raise_code(result_code::invalid_name, to_utf8(container));
    }
    if (secret.empty() || !secret.is_well_formed() || unusable(secret) || !is_well_formed(written))
        return {password_check::wrong};
    const std::optional<Text> below = name_below(written, *container_name_);
    if (!below) return {password_check::wrong};
    const std::string name = to_utf8(*below);
    return throttled_check(name, [&] { return ask_directory(name, secret); });
}

std::int32_t EmbeddedValidator::ask_directory(const std::string& name, const Secret& secret) {
    if (!directory_) directory_ = Directory::of(server_);
    const BindAnswer answer = directory_->bind(name, secret, Directory::Proof::anew);
    const std::optional<int> number = judged(answer.code, {}, answer.policy);
    if (!number) raise_code(answer.code);
    if (*number == password_check::right || *number == password_check::expired)
        ProvenPassword::note(directory_->key(), name, secret, Clock::steady().now());
    return *number;
}

}  // namespace orvo::directory::embedded
