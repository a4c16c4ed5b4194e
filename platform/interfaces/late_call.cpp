#include "platform/interfaces/late_call.h"

#include "platform/interfaces/late_member.h"
#include "platform/values/failure.h"

namespace orvo::late {
namespace {

MemberId id_of(const Object& object, TextView name) {
    const std::optional<MemberId> member = try_member(object, name);
    if (!member) raise_runtime_error(runtime_error::member_not_found);
    return *member;
}

std::span<const Variant> all_of(const std::initializer_list<Variant>& values) {
    return {values.begin(), values.size()};
}

}  // namespace

Variant call(const Object& object, TextView member, std::initializer_list<Variant> arguments) {
    return call_member(object, id_of(object, member), all_of(arguments));
}

Variant call_by_reference(const Object& object, TextView member, std::span<Variant> arguments) {
    return call_member_by_reference(object, id_of(object, member), arguments);
}

Variant get(const Object& object, TextView property, std::initializer_list<Variant> indices) {
    return get_member(object, id_of(object, property), all_of(indices));
}

void put(const Object& object, TextView property, const Variant& value,
         std::initializer_list<Variant> indices) {
    put_member(object, id_of(object, property), value, all_of(indices));
}

Variant value_of(const Object& object, std::initializer_list<Variant> indices) {
    return get_member(object, default_member, all_of(indices));
}

void put_value(const Object& object, const Variant& value, std::initializer_list<Variant> indices) {
    put_member(object, default_member, value, all_of(indices));
}

}  // namespace orvo::late
