#include "component/common/Lib_ErrorHandling.h"
#include "component/entries/User.h"
#include "component/entries/empty_value.h"
#include "platform/values/values.h"
#include "platform/values/wiped.h"

namespace orvo {
namespace {

constexpr const char16_t* class_prefix = u"OrvoMembership.User.";

bool falls_back(const UserProperty& property, const Variant& values) {
    switch (property.fallback) {
        case Fallback::never:
            return false;
        case Fallback::when_zero:
            return equals_number(element(values, 0), 0);
        case Fallback::when_empty:
            return is_empty_value(element(values, 0));
    }
    return false;
}

// The list with a first element of -1 read as 0.
Variant id_list(Variant values) {
    if (!equals_number(element(values, 0), -1)) return values;
    Values list = values.to<Values>();
    list[0] = std::int16_t(0);
    return list;
}

Variant first_of(const UserProperty& property, const Variant& values) {
    if (property.rule == PropertyRule::no_value_is_text && values.to<Values>().upper_bound() < 0)
        return u"";
    Variant first = element(values, 0);
    if (property.rule == PropertyRule::empty_is_zero && first.to<Text>().empty())
        return std::int16_t(0);
    return first;
}

// A value as the property's type, for the conversion to fail inside the property's own frame.
Variant as_type(PropertyType type, const Variant& value) {
    switch (type) {
        case PropertyType::text:
            return value.to<Text>();
        case PropertyType::boolean:
            return value.to<bool>();
        case PropertyType::int16:
            return value.to<std::int16_t>();
        case PropertyType::int32:
            return value.to<std::int32_t>();
        case PropertyType::currency:
            return value.to<Currency>();
        case PropertyType::date:
            return value.to<Date>();
        case PropertyType::whole:
            break;
    }
    return value;
}

}  // namespace

Variant User::read_property(const UserProperty& property) {
    return trapped({class_prefix, property.name}, [&] {
        Text attribute = property.attribute;
        Variant values = GetAttribValue(attribute);
        if (falls_back(property, values) && profile_)
            return as_type(property.type, property.of_profile(profile_));
        if (property.type == PropertyType::whole)
            return property.rule == PropertyRule::id_list ? id_list(std::move(values)) : values;
        return as_type(property.type, first_of(property, values));
    });
}

void User::write_property(const UserProperty& property, const Variant& value) {
    trapped({class_prefix, property.name}, [&] {
        Text attribute = property.attribute;
        if (property.type == PropertyType::text && value.text_view().empty()) {
            ClearAttribValue(attribute);
        } else {
            Variant stored = Values{value};
            if (property.type == PropertyType::whole) stored = value;
            if (property.type == PropertyType::boolean)
                stored = Values{std::int16_t(value.to<bool>() ? 1 : 0)};
            SetAttribValue(attribute, stored);
        }
        if (property.rule == PropertyRule::marks_profile_change) profile_changed_ = true;
    });
}

Text User::text_of(const char16_t* attribute) {
    Text name = attribute;
    return element(GetAttribValue(name), 0).to<Text>();
}

Text User::CN() {
    return trapped({class_prefix, "CN"}, [&] { return text_of(u"cn"); });
}

Text User::GUID() {
    return trapped({class_prefix, "GUID"}, [&] { return text_of(u"OrvoGUID"); });
}

Ref<Profile> User::get_Profile() { return profile_; }

Text User::NTUser() {
    return trapped({class_prefix, "NTUser"},
                   [&] { return call<&Account::NTUser>(account_).to<Text>(); });
}

Secret User::NTPassword() {
    return trapped({class_prefix, "NTPassword"},
                   [&] { return Wiped(call<&Account::NTPassword>(account_)).value.to<Secret>(); });
}

bool User::is_of_type(const UserTypeProperty& property) {
    return trapped({class_prefix, property.name},
                   [&] { return get_property<property_row("OrvoUserType")>() == property.type; });
}

void User::make_type(const UserTypeProperty& property) {
    trapped({class_prefix, property.name},
            [&] { put_property<property_row("OrvoUserType")>(property.type); });
}

}  // namespace orvo
