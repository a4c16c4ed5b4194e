#include "platform/interfaces/late_member.h"

#include <algorithm>

#include "platform/interfaces/border.h"
#include "platform/interfaces/member_kinds.h"
#include "platform/interfaces/short_list.h"
#include "platform/interfaces/type_information.h"

namespace orvo::late {
namespace {

using abi::HRESULT;
using detail::ShortList;

void require(const Object& object) {
    if (!object) raise_runtime_error(runtime_error::object_not_set);
}

// `arguments` in Invoke's own order: the last one first. What fails is left in `failure`.
HRESULT try_invoke(const Object& object, abi::DISPID id, std::uint16_t flags,
                   std::span<abi::VARIANT> arguments, abi::VARIANT& result,
                   abi::EXCEPINFO& failure) {
    static constexpr abi::IID none{};
    abi::DISPID value_name = abi::DISPID_PROPERTYPUT;
    abi::DISPPARAMS params{arguments.data(), nullptr, static_cast<std::uint32_t>(arguments.size()),
                           0};
    const bool is_put = flags & abi::DISPATCH_PROPERTYPUT;
    if (is_put) {
        params.rgdispidNamedArgs = &value_name;
        params.cNamedArgs = 1;
    }
    std::uint32_t bad_argument = 0;
    return abi::call_slot<HRESULT, abi::DISPID, const abi::IID*, abi::LCID, std::uint16_t,
                          abi::DISPPARAMS*, abi::VARIANT*, abi::EXCEPINFO*, std::uint32_t*>(
        object.get(), abi::slot_invoke, id, &none, abi::fixed_locale, flags, &params,
        is_put ? nullptr : &result, &failure, &bad_argument);
}

Variant invoke(Object object, abi::DISPID id, std::uint16_t flags,
               std::span<abi::VARIANT> arguments) {
    require(object);
    abi::VARIANT result{};
    abi::EXCEPINFO failure{};
    const HRESULT code = try_invoke(object, id, flags, arguments, result, failure);
    if (abi::failed(code)) detail::raise_late_failure(code, failure);
    return Variant::attach(result);
}

// With what an object refuses to read a member that is none to be read without arguments.
bool means_unreadable(HRESULT code) {
    return code == abi::disp_e_membernotfound || code == abi::disp_e_badparamcount ||
           code == abi::disp_e_paramnotoptional || code == abi::disp_e_typemismatch;
}

// At the end of `raw`, the last one first. Borrows the values: they outlive the call and are only
// read.
void lend_reversed(std::span<const Variant> values, const ShortList<abi::VARIANT>& raw) {
    for (std::size_t i = 0; i < values.size(); ++i)
        raw[raw.all().size() - 1 - i] = *values[i].get();
}

}  // namespace

std::optional<MemberId> try_member(const Object& object, TextView name) {
    require(object);
    const Object held = object;
    static constexpr abi::IID none{};
    const ShortList<char16_t, 64> terminated(name.size() + 1);
    std::ranges::copy(name, terminated.all().begin());
    const char16_t* names = terminated.all().data();
    abi::DISPID id = abi::DISPID_UNKNOWN;
    const HRESULT code = abi::call_slot<HRESULT, const abi::IID*, const char16_t**, std::uint32_t,
                                        abi::LCID, abi::DISPID*>(
        held.get(), abi::slot_get_ids_of_names, &none, &names, 1, abi::fixed_locale, &id);
    if (abi::failed(code)) return std::nullopt;
    return id;
}

std::optional<MemberKind> try_kind_of(const Object& object, MemberId member) {
    require(object);
    Object kinds;
    if (abi::failed(abi::query_interface(object.get(), detail::iid_member_kinds,
                                         reinterpret_cast<void**>(kinds.put()))))
        return detail::try_described_kind(object, member);
    std::uint32_t flags = 0;
    std::uint32_t parameters = 0;
    std::uint32_t required = 0;
    abi::call_slot<HRESULT, abi::IUnknown*, abi::DISPID, std::uint32_t*, std::uint32_t*,
                   std::uint32_t*>(kinds.get(), detail::slot_describe_member, object.get(), member,
                                   &flags, &parameters, &required);
    return MemberKind{
        .is_method = (flags & abi::DISPATCH_METHOD) != 0,
        .is_readable = (flags & abi::DISPATCH_PROPERTYGET) != 0,
        .is_writable = (flags & (abi::DISPATCH_PROPERTYPUT | abi::DISPATCH_PROPERTYPUTREF)) != 0,
        .answers_object = (flags & detail::member_answers_object) != 0,
        .parameters = static_cast<int>(parameters),
        .required = static_cast<int>(required)};
}

Variant call_member(const Object& object, MemberId member, std::span<const Variant> arguments) {
    const ShortList<abi::VARIANT> raw(arguments.size());
    lend_reversed(arguments, raw);
    return invoke(object, member, abi::DISPATCH_METHOD | abi::DISPATCH_PROPERTYGET, raw.all());
}

Variant call_member_by_reference(const Object& object, MemberId member,
                                 std::span<Variant> arguments) {
    const ShortList<abi::VARIANT> raw(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        abi::VARIANT& argument = raw[arguments.size() - 1 - i];
        argument.vt = abi::VT_BYREF | abi::VT_VARIANT;
        argument.pvarVal = arguments[i].lend();
    }
    return invoke(object, member, abi::DISPATCH_METHOD | abi::DISPATCH_PROPERTYGET, raw.all());
}

Variant get_member(const Object& object, MemberId member, std::span<const Variant> indices) {
    const ShortList<abi::VARIANT> raw(indices.size());
    lend_reversed(indices, raw);
    return invoke(object, member, abi::DISPATCH_PROPERTYGET, raw.all());
}

std::optional<Variant> try_get_member(const Object& object, MemberId member) {
    require(object);
    const Object held = object;
    abi::VARIANT result{};
    abi::EXCEPINFO failure{};
    const HRESULT code = try_invoke(held, member, abi::DISPATCH_PROPERTYGET, {}, result, failure);
    if (means_unreadable(code)) {
        for (abi::BSTR text : {failure.bstrSource, failure.bstrDescription, failure.bstrHelpFile})
            abi::SysFreeString(text);
        return std::nullopt;
    }
    if (abi::failed(code)) detail::raise_late_failure(code, failure);
    return Variant::attach(result);
}

void put_member(const Object& object, MemberId member, const Variant& value,
                std::span<const Variant> indices) {
    const ShortList<abi::VARIANT> raw(1 + indices.size());
    raw[0] = *value.get();
    lend_reversed(indices, raw);
    invoke(object, member, abi::DISPATCH_PROPERTYPUT, raw.all());
}

}  // namespace orvo::late
