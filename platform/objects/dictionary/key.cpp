#include "platform/objects/dictionary/key.h"

#include <bit>
#include <cmath>
#include <optional>

#include "platform/system/vartypes.h"
#include "platform/values/failure.h"

namespace orvo::dictionary {
namespace {

std::optional<double> number_of(const Variant& key) {
    const abi::VARIANT& raw = *key.get();
    switch (abi::row_of(raw.vt).content) {
        case abi::Content::whole:
            return static_cast<double>(abi::integer_in(raw));
        case abi::Content::natural:
            return static_cast<double>(static_cast<std::uint64_t>(abi::integer_in(raw)));
        case abi::Content::real:
        case abi::Content::date:
            return abi::real_in(raw);
        case abi::Content::currency:
        case abi::Content::decimal:
            return key.to<double>();
        default:
            return {};
    }
}

// The one pointer that stands for an object, whichever of its interfaces is held.
const void* identity_of(const Variant& key) {
    abi::IUnknown* held = key.get()->punkVal;
    if (held == nullptr) return nullptr;
    Object identity;
    abi::query_interface(held, abi::iid_unknown, reinterpret_cast<void**>(identity.put()));
    return identity.get();
}

std::size_t hash_of_text(TextView text) {
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (const char16_t unit : text) hash = (hash ^ unit) * 0x100000001B3u;
    return static_cast<std::size_t>(hash ^ hash >> 32);
}

std::size_t mixed(std::uint64_t bits) {
    bits = (bits ^ bits >> 32) * 0x9E3779B97F4A7C15u;
    return static_cast<std::size_t>(bits ^ bits >> 29);
}

}  // namespace

std::size_t hash_of(const Variant& key, Texts texts) {
    if (key.is_text())
        return hash_of_text(texts == Texts::exactly ? key.text_view()
                                                    : TextView(lower(key.text_view())));
    if (const auto number = number_of(key))
        return mixed(std::isnan(*number) ? 1 : std::bit_cast<std::uint64_t>(*number + 0.0));
    if (key.is_object()) return mixed(reinterpret_cast<std::uintptr_t>(identity_of(key)));
    switch (key.kind()) {
        case Kind::empty:
            return 2;
        case Kind::null:
            return 3;
        case Kind::boolean:
            return key.to<bool>() ? 4 : 5;
        case Kind::error:
            return mixed(static_cast<std::uint32_t>(key.get()->scode));
        default:
            raise_runtime_error(runtime_error::invalid_call);
    }
}

bool are_equal(const Variant& a, const Variant& b, Texts texts) {
    if (a.is_text() && b.is_text())
        return texts == Texts::exactly ? a.text_view() == b.text_view()
                                       : equal_ignoring_case(a.text_view(), b.text_view());
    const auto left = number_of(a);
    const auto right = number_of(b);
    if (left && right) return *left == *right || (std::isnan(*left) && std::isnan(*right));
    if (a.is_object() && b.is_object()) return identity_of(a) == identity_of(b);
    return a == b;
}

}  // namespace orvo::dictionary
