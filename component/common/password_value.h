#pragma once

#include "platform/values/secret.h"
#include "platform/values/variant.h"

namespace orvo {

// A password as a text value: the one place where the component makes clear text of it, for the
// interfaces that take or give passwords as variants.
Variant password_value(const Secret& secret);

// Such a value for the length of a call. What is left of it when this goes is overwritten; copies
// that the callee made are the callee's.
struct PasswordValue {
    explicit PasswordValue(const Secret& secret) : value(password_value(secret)) {}
    explicit PasswordValue(Variant given) : value(std::move(given)) {}
    ~PasswordValue() { value.wipe(); }
    PasswordValue(const PasswordValue&) = delete;
    PasswordValue& operator=(const PasswordValue&) = delete;

    Variant value;
};

}  // namespace orvo
