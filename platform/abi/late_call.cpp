#include "platform/abi/late_call.h"

#include <vector>

#include "platform/abi/border.h"

namespace orvo::late {
namespace {

using abi::HRESULT;

void require(const Object& object) {
    if (!object) raise_runtime_error(runtime_error::object_not_set);
}

abi::DISPID id_of(const Object& object, TextView member) {
    require(object);
    static constexpr abi::IID none{};
    const Text name(member);
    const char16_t* names = name.c_str();
    abi::DISPID id = abi::DISPID_UNKNOWN;
    const HRESULT code = abi::call_slot<HRESULT, const abi::IID*, const char16_t**, std::uint32_t,
                                        abi::LCID, abi::DISPID*>(
        object.get(), abi::slot_get_ids_of_names, &none, &names, 1, abi::fixed_locale, &id);
    if (abi::failed(code)) raise_runtime_error(runtime_error::member_not_found);
    return id;
}

// `arguments` in Invoke's own order: the last one first.
Variant invoke(const Object& object, abi::DISPID id, std::uint16_t flags,
               std::span<abi::VARIANT> arguments) {
    static constexpr abi::IID none{};
    abi::DISPID value_name = abi::DISPID_PROPERTYPUT;
    abi::DISPPARAMS params{arguments.data(), nullptr, static_cast<std::uint32_t>(arguments.size()),
                           0};
    const bool is_put = flags & abi::DISPATCH_PROPERTYPUT;
    if (is_put) {
        params.rgdispidNamedArgs = &value_name;
        params.cNamedArgs = 1;
    }
    abi::VARIANT result{};
    abi::EXCEPINFO failure{};
    std::uint32_t bad_argument = 0;
    const HRESULT code =
        abi::call_slot<HRESULT, abi::DISPID, const abi::IID*, abi::LCID, std::uint16_t,
                       abi::DISPPARAMS*, abi::VARIANT*, abi::EXCEPINFO*, std::uint32_t*>(
            object.get(), abi::slot_invoke, id, &none, abi::fixed_locale, flags, &params,
            is_put ? nullptr : &result, &failure, &bad_argument);
    if (abi::failed(code)) detail::raise_late_failure(code, failure);
    return Variant::attach(result);
}

// Borrows the values: they outlive the call and are only read.
std::vector<abi::VARIANT> reversed(std::initializer_list<Variant> values) {
    std::vector<abi::VARIANT> raw;
    for (auto value = std::rbegin(values); value != std::rend(values); ++value)
        raw.push_back(*value->get());
    return raw;
}

void put_member(const Object& object, abi::DISPID id, const Variant& value,
                std::initializer_list<Variant> indices) {
    std::vector<abi::VARIANT> raw{*value.get()};
    for (const abi::VARIANT& index : reversed(indices)) raw.push_back(index);
    invoke(object, id, abi::DISPATCH_PROPERTYPUT, raw);
}

}  // namespace

Variant call(const Object& object, TextView member, std::initializer_list<Variant> arguments) {
    std::vector<abi::VARIANT> raw = reversed(arguments);
    return invoke(object, id_of(object, member), abi::DISPATCH_METHOD | abi::DISPATCH_PROPERTYGET,
                  raw);
}

Variant call_by_reference(const Object& object, TextView member, std::span<Variant> arguments) {
    std::vector<abi::VARIANT> raw(arguments.size());
    for (std::size_t i = 0; i < raw.size(); ++i) {
        abi::VARIANT& argument = raw[raw.size() - 1 - i];
        argument.vt = abi::VT_BYREF | abi::VT_VARIANT;
        argument.pvarVal = arguments[i].lend();
    }
    return invoke(object, id_of(object, member), abi::DISPATCH_METHOD | abi::DISPATCH_PROPERTYGET,
                  raw);
}

Variant get(const Object& object, TextView property, std::initializer_list<Variant> indices) {
    std::vector<abi::VARIANT> raw = reversed(indices);
    return invoke(object, id_of(object, property), abi::DISPATCH_PROPERTYGET, raw);
}

void put(const Object& object, TextView property, const Variant& value,
         std::initializer_list<Variant> indices) {
    put_member(object, id_of(object, property), value, indices);
}

Variant value_of(const Object& object, std::initializer_list<Variant> indices) {
    require(object);
    std::vector<abi::VARIANT> raw = reversed(indices);
    return invoke(object, abi::DISPID_VALUE, abi::DISPATCH_PROPERTYGET, raw);
}

void put_value(const Object& object, const Variant& value, std::initializer_list<Variant> indices) {
    require(object);
    put_member(object, abi::DISPID_VALUE, value, indices);
}

}  // namespace orvo::late
