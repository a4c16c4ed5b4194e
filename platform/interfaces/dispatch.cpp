#include "platform/interfaces/dispatch.h"

#include <algorithm>

#include "platform/interfaces/border.h"
#include "platform/interfaces/short_list.h"
#include "platform/system/type_library.h"
#include "platform/values/case_folding.h"

namespace orvo::detail {
namespace {

using abi::HRESULT;

// Ids that nobody prescribed count from here, in slot order; members of one name share theirs.
constexpr abi::DISPID first_own_id = 1;

// Arguments that are handed on from one default member to the next reach one that takes them, or
// there is none: an object may answer itself.
constexpr int most_handed_on = 64;

// The same for names that are equal without regard to case (FNV-1a, 32 bits).
std::uint32_t name_key(TextView name) {
    std::uint32_t key = 0x811C9DC5u;
    for (const char16_t unit : name) key = (key ^ folded(unit)) * 0x01000193u;
    return key;
}

// Members' names are ASCII.
bool is_named(const LateMember& member, TextView name) {
    const std::string_view own = member.row->name;
    return std::ranges::equal(own, name, [](char a, char16_t b) {
        return folded(static_cast<unsigned char>(a)) == folded(b);
    });
}

bool is_null_guid(const abi::IID* id) { return id == nullptr || *id == abi::IID{}; }

// A result that may have a default member, as an object; empty for anything else.
Object as_object(const Variant& value) { return value.is_object() ? value.to<Object>() : Object(); }

// Calls the default member of `object` with the arguments that its holder had no parameter for.
// The arguments stand in Invoke's own order, so the last ones come first.
HRESULT invoke_default(const Object& object, std::uint16_t flags, abi::DISPPARAMS rest,
                       abi::VARIANT* result, abi::EXCEPINFO* failure, std::uint32_t* bad_argument) {
    static constexpr abi::IID none{};
    static thread_local int handed_on = 0;
    if (handed_on == most_handed_on) return abi::disp_e_badparamcount;
    ++handed_on;
    const HRESULT code =
        abi::call_slot<HRESULT, abi::DISPID, const abi::IID*, abi::LCID, std::uint16_t,
                       abi::DISPPARAMS*, abi::VARIANT*, abi::EXCEPINFO*, std::uint32_t*>(
            object.get(), abi::slot_invoke, abi::DISPID_VALUE, &none, abi::fixed_locale, flags,
            &rest, result, failure, bad_argument);
    --handed_on;
    return code;
}

HRESULT conversion_code(const Failure& failure) {
    switch (failure.number) {
        case runtime_error::overflow:
            return abi::disp_e_overflow;
        case runtime_error::type_mismatch:
        case runtime_error::invalid_use_of_null:
            return abi::disp_e_typemismatch;
        default:
            return result_of_number(failure.number);
    }
}

class LateCall {
public:
    LateCall(Face& face, abi::DISPPARAMS& passed, bool is_put)
        : face_(face), passed_(passed), is_put_(is_put) {}

    // Calls `member` with the first arguments that it has parameters for; `taken` of them were
    // used. Answers a code that is no failure of the member itself, or raises.
    HRESULT run(const LateMember& member, std::size_t taken, Variant& result,
                std::uint32_t* bad_argument) {
        const std::size_t arity = member.row->arity;
        const ShortList<abi::VARIANT*> values(arity);
        if (is_put_ && taken > 0) {  // the new value is the last parameter, whatever indices lack
            for (std::size_t i = 0; i + 1 < taken; ++i) values[i] = argument(i);
            values[arity - 1] = argument(taken - 1);
        } else {
            for (std::size_t i = 0; i < taken; ++i) values[i] = argument(i);
        }
        for (std::size_t i = 0; i < arity; ++i) {
            if (values[i] != nullptr && refers_to_nothing(*values[i])) {
                if (bad_argument != nullptr) *bad_argument = place_of(values[i]);
                return abi::e_invalidarg;
            }
            if (values[i] != nullptr && is_missing(*values[i])) values[i] = nullptr;
            if (values[i] == nullptr && !member.row->parameters[i].may_be_missing)
                return abi::disp_e_paramnotoptional;
        }
        LateArguments arguments{values.all(), *member.row};
        try {
            result = member.invoke(face_.target, arguments);
            return abi::s_ok;
        } catch (const Failure& failure) {
            if (arguments.converting < 0) throw;
            if (bad_argument != nullptr)
                *bad_argument = place_of(values[static_cast<std::size_t>(arguments.converting)]);
            return conversion_code(failure);
        }
    }

private:
    abi::VARIANT* argument(std::size_t index) { return &passed_.rgvarg[passed_.cArgs - 1 - index]; }
    std::uint32_t place_of(const abi::VARIANT* value) const {
        return static_cast<std::uint32_t>(value - passed_.rgvarg);
    }
    static bool refers_to_nothing(const abi::VARIANT& value) {
        auto is_null = [](const abi::VARIANT& reference) {
            return reference.vt & abi::VT_BYREF && reference.byref == nullptr;
        };
        return is_null(value) ||
               (value.vt == (abi::VT_BYREF | abi::VT_VARIANT) && is_null(*value.pvarVal));
    }
    static bool is_missing(const abi::VARIANT& value) {
        return value.vt == abi::VT_ERROR && value.scode == abi::disp_e_paramnotfound;
    }

    Face& face_;
    abi::DISPPARAMS& passed_;
    bool is_put_;
};

// What a call asks for: a member of one shape, or a member whose result's default member takes the
// remaining arguments (`rs.Fields("cn")`, `rs.Fields("cn") = 1`).
struct Plan {
    const LateMember* member = nullptr;
    std::size_t taken = 0;
    bool goes_on = false;
};

Plan plan_call(const InterfaceInfo& info, abi::DISPID id, std::uint16_t flags, std::size_t count) {
    const bool is_put = flags & (abi::DISPATCH_PROPERTYPUT | abi::DISPATCH_PROPERTYPUTREF);
    if (is_put) {
        const Shape asked = flags & abi::DISPATCH_PROPERTYPUT ? Shape::put : Shape::put_reference;
        const Shape other = asked == Shape::put ? Shape::put_reference : Shape::put;
        for (Shape shape : {asked, other})
            if (const LateMember* member = info.find(id, shape)) return {member, count, false};
    } else {
        if (const LateMember* property = info.find(id, Shape::get)) {
            const std::size_t arity = property->row->arity;
            return {property, std::min(arity, count), count > arity};
        }
        // A method is not carried out with arguments that it has no parameters for.
        return {info.find(id, Shape::method), count, false};
    }
    // Without an index there is nothing to hand on: the property is read-only.
    if (count < 2) return {};
    if (const LateMember* holder = info.find(id, Shape::get))
        return {holder, std::min(holder->row->arity, count - 1), true};
    return {};
}

}  // namespace

void InterfaceInfo::add(const RowData& row, Variant (*invoke)(void*, LateArguments&),
                        bool answers_object) {
    LateMember member{row.dispid, &row, invoke, answers_object};
    if (member.id == automatic_id) {
        const Text name = from_utf8(row.name);
        const auto same = std::ranges::find_if(
            members, [&](const LateMember& known) { return is_named(known, name); });
        member.id = same != members.end() ? same->id
                                          : first_own_id + static_cast<abi::DISPID>(members.size());
    }
    members.push_back(member);
}

void InterfaceInfo::finish() {
    for (std::uint32_t place = 0; place < members.size(); ++place) {
        by_name.push_back({name_key(from_utf8(members[place].row->name)), place});
        by_id.push_back({static_cast<std::uint32_t>(members[place].id), place});
    }
    std::ranges::stable_sort(by_name, {}, &Key::value);
    std::ranges::stable_sort(by_id, {}, &Key::value);
}

abi::DISPID InterfaceInfo::id_of(TextView name) const {
    for (const Key& key : std::ranges::equal_range(by_name, name_key(name), {}, &Key::value))
        if (is_named(members[key.member], name)) return members[key.member].id;
    return abi::DISPID_UNKNOWN;
}

const LateMember* InterfaceInfo::find(abi::DISPID id, Shape shape) const {
    const auto asked = static_cast<std::uint32_t>(id);
    for (const Key& key : std::ranges::equal_range(by_id, asked, {}, &Key::value))
        if (members[key.member].row->shape == shape) return &members[key.member];
    return nullptr;
}

HRESULT get_type_info_count(Face* face, std::uint32_t* count) noexcept {
    if (count == nullptr) return abi::e_pointer;
    const Object info = Object::attach(runtime::try_type_info(*face->info->iid));
    *count = info ? 1 : 0;
    return abi::s_ok;
}

HRESULT get_type_info(Face* face, std::uint32_t index, abi::LCID, abi::IUnknown** out) noexcept {
    if (out == nullptr) return abi::e_pointer;
    *out = nullptr;
    if (index != 0) return abi::disp_e_badindex;
    *out = runtime::try_type_info(*face->info->iid);
    return *out != nullptr ? abi::s_ok : abi::e_notimpl;
}

HRESULT get_ids_of_names(Face* face, const abi::IID* reserved, const char16_t** names,
                         std::uint32_t count, abi::LCID, abi::DISPID* ids) noexcept {
    if (!is_null_guid(reserved)) return abi::disp_e_unknowninterface;
    if (names == nullptr || ids == nullptr) return abi::e_pointer;
    HRESULT code = abi::s_ok;
    for (std::uint32_t i = 0; i < count; ++i) {
        // Only the member has a number; parameters are passed by place.
        ids[i] = i == 0 && names[0] != nullptr ? face->info->id_of(names[0]) : abi::DISPID_UNKNOWN;
        if (ids[i] == abi::DISPID_UNKNOWN) code = abi::disp_e_unknownname;
    }
    return code;
}

HRESULT invoke(Face* face, abi::DISPID id, const abi::IID* reserved, abi::LCID, std::uint16_t flags,
               abi::DISPPARAMS* passed, abi::VARIANT* result, abi::EXCEPINFO* failure,
               std::uint32_t* bad_argument) noexcept {
    if (result != nullptr) *result = {};
    if (!is_null_guid(reserved)) return abi::disp_e_unknowninterface;
    if (!face->core->is_called_at_home()) return abi::rpc_e_wrong_thread;
    abi::DISPPARAMS none{};
    if (passed == nullptr) passed = &none;
    if ((passed->cArgs != 0 && passed->rgvarg == nullptr) ||
        (passed->cNamedArgs != 0 && passed->rgdispidNamedArgs == nullptr))
        return abi::e_invalidarg;
    const bool is_put = flags & (abi::DISPATCH_PROPERTYPUT | abi::DISPATCH_PROPERTYPUTREF);
    const bool names_the_value = is_put && passed->cNamedArgs == 1 &&
                                 passed->rgdispidNamedArgs[0] == abi::DISPID_PROPERTYPUT;
    if (passed->cNamedArgs != 0 && !names_the_value) return abi::disp_e_nonamedargs;
    if (is_put && passed->cArgs == 0) return abi::disp_e_badparamcount;

    const Plan plan = plan_call(*face->info, id, flags, passed->cArgs);
    if (plan.member == nullptr) return abi::disp_e_membernotfound;
    if (plan.taken > plan.member->row->arity) return abi::disp_e_badparamcount;
    try {
        Variant value;
        LateCall call(*face, *passed, is_put && !plan.goes_on);
        const HRESULT code = call.run(*plan.member, plan.taken, value, bad_argument);
        if (abi::failed(code)) return code;
        if (plan.goes_on) {
            const Object holder = as_object(value);
            if (!holder) return abi::disp_e_badparamcount;
            abi::DISPPARAMS rest = *passed;
            rest.cArgs -= static_cast<std::uint32_t>(plan.taken);
            return invoke_default(holder, flags, rest, result, failure, bad_argument);
        }
        if (result != nullptr) value.detach(*result);
        return abi::s_ok;
    } catch (...) {
        return report_current_exception_late(failure, *face->core, plan.member->row->name);
    }
}

}  // namespace orvo::detail
