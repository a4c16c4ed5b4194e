#include "platform/interfaces/dispatch.h"

#include <algorithm>

#include "platform/interfaces/border.h"
#include "platform/interfaces/short_list.h"
#include "platform/interfaces/standard_slots.h"
#include "platform/system/type_library.h"
#include "platform/values/case_folding.h"
#include "platform/values/values.h"

namespace orvo::detail {
namespace {

using abi::HRESULT;

// Ids that nobody prescribed count from here, in slot order; members of one name share theirs.
constexpr abi::DISPID first_own_id = 1;

// How many default members, each the one of the former's result, a call may be handed on through.
// An object that is its own default value would hand it on for ever.
constexpr int most_handed_on = 64;

// The same for names that are equal without regard to case (FNV-1a, 32 bits).
std::uint32_t name_key(TextView name) {
    std::uint32_t key = 0x811C9DC5u;
    for (const char16_t unit : name) key = (key ^ folded(unit)) * 0x01000193u;
    return key;
}

// Names of members and parameters are ASCII.
bool is_same_name(std::string_view own, TextView name) {
    return std::ranges::equal(own, name, [](char a, char16_t b) {
        return folded(static_cast<unsigned char>(a)) == folded(b);
    });
}

bool is_named(const LateMember& member, TextView name) {
    return is_same_name(member.row->name, name);
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
        case runtime_error::object_not_set:
            return abi::disp_e_typemismatch;
        default:
            return result_of_number(failure.number);
    }
}

// The arguments of one call by what they are for: those that stand in their places come first, then
// those that name their parameter, and of an assignment the new value.
class PassedArguments {
public:
    PassedArguments(abi::DISPPARAMS& passed, bool is_put)
        : passed_(passed), placed_(passed.cArgs - passed.cNamedArgs) {
        if (!is_put) return;
        for (std::uint32_t i = 0; i < passed.cNamedArgs && value_ == nullptr; ++i)
            if (passed.rgdispidNamedArgs[i] == abi::DISPID_PROPERTYPUT) value_ = &passed.rgvarg[i];
        if (value_ != nullptr || placed_ == 0) return;
        value_ = &passed.rgvarg[passed.cNamedArgs];  // not said to be the value: it stands last
        --placed_;
    }

    std::size_t placed_count() const { return placed_; }
    abi::VARIANT* placed(std::size_t index) const {
        return &passed_.rgvarg[passed_.cArgs - 1 - index];
    }
    // Of an assignment; null where there is none.
    abi::VARIANT* value() const { return value_; }
    bool has_names() const { return passed_.cNamedArgs > (value_is_named() ? 1u : 0u); }
    // Calls visit(number of the parameter, argument) until it answers a failure, which is answered.
    template <class Visit>
    HRESULT for_each_named(Visit visit) const {
        for (std::uint32_t i = 0; i < passed_.cNamedArgs; ++i) {
            if (&passed_.rgvarg[i] == value_) continue;
            const HRESULT code = visit(passed_.rgdispidNamedArgs[i], &passed_.rgvarg[i]);
            if (abi::failed(code)) return code;
        }
        return abi::s_ok;
    }
    std::uint32_t number_of(const abi::VARIANT* argument) const {
        return static_cast<std::uint32_t>(argument - passed_.rgvarg);
    }
    // Those behind the first `taken` ones in their places.
    abi::DISPPARAMS behind(std::size_t taken) const {
        abi::DISPPARAMS rest = passed_;
        rest.cArgs -= static_cast<std::uint32_t>(taken);
        return rest;
    }

private:
    bool value_is_named() const {
        return value_ != nullptr && value_ < passed_.rgvarg + passed_.cNamedArgs;
    }

    abi::DISPPARAMS& passed_;
    std::size_t placed_;
    abi::VARIANT* value_ = nullptr;
};

// A method may take any number of arguments: its last parameter, whose name ends with "...", gets
// an array of those that have no place of their own, or is left out where there are none.
bool takes_any_number(const RowData& row) {
    return row.arity > 0 && std::string_view(row.parameters[row.arity - 1].name).ends_with("...");
}

class LateCall {
public:
    LateCall(Face& face, const PassedArguments& passed) : face_(face), passed_(passed) {}

    // Calls `member` with the first `taken` arguments in their places, with the named ones and, as
    // its last one, with `value` where that is not null. Answers a code that is no failure of the
    // member itself, or raises.
    HRESULT run(const LateMember& member, std::size_t taken, abi::VARIANT* value, Variant& result,
                std::uint32_t* bad_argument) {
        const std::size_t arity = member.row->arity;
        const std::size_t places = value != nullptr ? arity - 1 : arity;
        const ShortList<abi::VARIANT*> values(arity);
        Variant others;
        const std::size_t own = takes_any_number(*member.row) ? arity - 1 : arity;
        for (std::size_t i = 0; i < std::min(taken, own); ++i) values[i] = passed_.placed(i);
        if (taken > own) {
            others = all_from(own, taken);
            values[own] = others.lend();
        }
        if (value != nullptr) values[arity - 1] = value;
        const HRESULT named = passed_.for_each_named([&](abi::DISPID number, abi::VARIANT* given) {
            const auto place = static_cast<std::size_t>(number);
            if (number >= 0 && place < places && values[place] == nullptr) {
                values[place] = given;
                return abi::s_ok;
            }
            if (bad_argument != nullptr) *bad_argument = passed_.number_of(given);
            return abi::disp_e_paramnotfound;
        });
        if (abi::failed(named)) return named;
        for (std::size_t i = 0; i < arity; ++i) {
            if (values[i] != nullptr && refers_to_nothing(*values[i])) {
                if (bad_argument != nullptr) *bad_argument = passed_.number_of(values[i]);
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
                *bad_argument =
                    passed_.number_of(values[static_cast<std::size_t>(arguments.converting)]);
            return conversion_code(failure);
        }
    }

private:
    // The arguments in these places, as an array.
    Variant all_from(std::size_t begin, std::size_t end) const {
        Values all(0, static_cast<std::int32_t>(end - begin));
        for (std::size_t i = begin; i < end; ++i)
            all[static_cast<std::int32_t>(i - begin)] = Variant::copy_of(*passed_.placed(i));
        return Variant(std::move(all));
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
    const PassedArguments& passed_;
};

// What a call asks for: a member of one shape, or a member whose result's default member takes the
// remaining arguments (`rs.Fields("cn")`, `rs.Fields("cn") = 1`).
struct Plan {
    const LateMember* member = nullptr;
    std::size_t taken = 0;
    bool goes_on = false;
};

// The setter that an assignment asks for. One by reference (VBScript's Set) is for setters that
// take references. One by value takes any, and so does one that leaves it open.
const LateMember* setter_for(const InterfaceInfo& info, abi::DISPID id, std::uint16_t flags) {
    if (flags & abi::DISPATCH_PROPERTYPUT)
        if (const LateMember* setter = info.find(id, Shape::put)) return setter;
    return info.find(id, Shape::put_reference);
}

// `count`: of the arguments in their places, without an assignment's value.
Plan plan_call(const InterfaceInfo& info, abi::DISPID id, std::uint16_t flags, std::size_t count) {
    if (!(flags & (abi::DISPATCH_PROPERTYPUT | abi::DISPATCH_PROPERTYPUTREF))) {
        if (const LateMember* property = info.find(id, Shape::get)) {
            const std::size_t arity = property->row->arity;
            return {property, std::min(arity, count), count > arity};
        }
        // A method is not carried out with arguments that it has no parameters for.
        return {info.find(id, Shape::method), count, false};
    }
    if (const LateMember* setter = setter_for(info, id, flags)) return {setter, count, false};
    // Without an index there is nothing to hand on: the property is read-only.
    if (count == 0) return {};
    if (const LateMember* holder = info.find(id, Shape::get))
        return {holder, std::min(holder->row->arity, count), true};
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
    const std::uint32_t asked = name_key(name);
    for (auto key = std::ranges::lower_bound(by_name, asked, {}, &Key::value);
         key != by_name.end() && key->value == asked; ++key)
        if (is_named(members[key->member], name)) return members[key->member].id;
    return abi::DISPID_UNKNOWN;
}

abi::DISPID InterfaceInfo::parameter_of(abi::DISPID id, TextView name) const {
    for (const LateMember& member : members) {
        if (member.id != id) continue;
        const bool is_setter =
            member.row->shape == Shape::put || member.row->shape == Shape::put_reference;
        const std::size_t count = member.row->arity - (is_setter ? 1 : 0);
        for (std::size_t place = 0; place < count; ++place)
            if (is_same_name(member.row->parameters[place].name, name))
                return static_cast<abi::DISPID>(place);
    }
    return abi::DISPID_UNKNOWN;
}

const LateMember* InterfaceInfo::find(abi::DISPID id, Shape shape) const {
    const auto asked = static_cast<std::uint32_t>(id);
    for (auto key = std::ranges::lower_bound(by_id, asked, {}, &Key::value);
         key != by_id.end() && key->value == asked; ++key)
        if (members[key->member].row->shape == shape) return &members[key->member];
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
    // The member's name, then those of parameters, which are known by their places.
    for (std::uint32_t i = 0; i < count; ++i) {
        if (names[i] == nullptr || (i > 0 && ids[0] == abi::DISPID_UNKNOWN))
            ids[i] = abi::DISPID_UNKNOWN;
        else
            ids[i] =
                i == 0 ? face->info->id_of(names[0]) : face->info->parameter_of(ids[0], names[i]);
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
    const bool is_put = flags & (abi::DISPATCH_PROPERTYPUT | abi::DISPATCH_PROPERTYPUTREF);
    if (is_put && passed->cArgs == 0) return abi::disp_e_badparamcount;
    if ((passed->cArgs != 0 && passed->rgvarg == nullptr) || passed->cNamedArgs > passed->cArgs ||
        (passed->cNamedArgs != 0 && passed->rgdispidNamedArgs == nullptr))
        return abi::e_invalidarg;
    const PassedArguments arguments(*passed, is_put);
    if (is_put && arguments.value() == nullptr) return abi::disp_e_badparamcount;

    const Plan plan = plan_call(*face->info, id, flags, arguments.placed_count());
    if (plan.member == nullptr) return abi::disp_e_membernotfound;
    if (plan.goes_on && arguments.has_names()) return abi::disp_e_nonamedargs;
    abi::VARIANT* new_value = plan.goes_on ? nullptr : arguments.value();
    if (plan.taken + (new_value != nullptr ? 1 : 0) > plan.member->row->arity &&
        !takes_any_number(*plan.member->row))
        return abi::disp_e_badparamcount;
    try {
        Variant value;
        LateCall call(*face, arguments);
        const HRESULT code = call.run(*plan.member, plan.taken, new_value, value, bad_argument);
        if (abi::failed(code)) return code;
        if (plan.goes_on) {
            const Object holder = as_object(value);
            if (!holder) return abi::disp_e_badparamcount;
            return invoke_default(holder, flags, arguments.behind(plan.taken), result, failure,
                                  bad_argument);
        }
        if (result != nullptr)
            value.detach(*result);
        else
            value.wipe();  // nobody asked for it, and it may be a password
        return answered(abi::s_ok);
    } catch (...) {
        return report_current_exception_late(failure, *face->core, plan.member->row->name);
    }
}

}  // namespace orvo::detail
