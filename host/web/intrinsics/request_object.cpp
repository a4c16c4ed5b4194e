#include "host/web/intrinsics/request_object.h"

#include <algorithm>
#include <limits>

#include "host/web/intrinsics/server_variables.h"
#include "host/web/intrinsics/uploaded_files.h"
#include "platform/interfaces/enumerator.h"
#include "platform/values/failure.h"

namespace orvo::web {

// A name, or a number from 1. Raises 9 for a number that there is none of.
template <class List>
std::optional<std::size_t> try_number(const Variant& key, const List& list) {
    if (key.is_text() || key.is_object()) return {};
    const auto number = key.to<std::int32_t>();
    if (number < 1 || static_cast<std::size_t>(number) > list.size())
        raise_runtime_error(runtime_error::subscript_out_of_range);
    return static_cast<std::size_t>(number - 1);
}

template <class List, class Name>
Object names_of(const List& list, Name name) {
    std::vector<Variant> names;
    for (const auto& entry : list) names.emplace_back(name(entry));
    return make_enumerator(std::move(names));
}

class StringListObject final : public StringList {
public:
    explicit StringListObject(std::vector<Text> values) : values_(std::move(values)) {}

    Variant Item(const Variant& index) override {
        if (!index.is_missing()) {
            const Variant number = index.to<std::int32_t>();
            return values_[*try_number(number, values_)];
        }
        Text all;
        for (const Text& value : values_) {
            if (&value != &values_.front()) all += u", ";
            all += value;
        }
        return all;
    }
    std::int32_t Count() override { return static_cast<std::int32_t>(values_.size()); }
    Object NewEnum() override {
        return names_of(values_, [](const Text& value) { return value; });
    }

private:
    const std::vector<Text> values_;
};

class ReadCookieObject final : public ReadCookie {
public:
    ReadCookieObject(Text text, RequestFields keys)
        : text_(std::move(text)), keys_(std::move(keys)) {}

    Variant Item(const Variant& key) override {
        if (key.is_missing()) return text_;
        const auto* found = keys_.find(key.to<Text>());
        return found ? Variant(found->values.front()) : Variant(u"");
    }
    bool HasKeys() override { return !keys_.all().empty(); }
    Object NewEnum() override {
        return names_of(keys_.all(), [](const RequestFields::Field& key) { return key.name; });
    }
    std::int32_t Count() override { return static_cast<std::int32_t>(keys_.all().size()); }
    Variant Key(const Variant& index) override {
        if (const auto number = try_number(index, keys_.all())) return keys_.all()[*number].name;
        return index;
    }

private:
    const Text text_;
    const RequestFields keys_;
};

// Fields of the page's request; keeps the request alive.
class RequestFieldsObject final : public RequestDictionary {
public:
    using MakeItem = Object (*)(const PageContext& page, const RequestFields::Field* field);
    using Raw = Text (*)(const PageContext& page);

    RequestFieldsObject(std::shared_ptr<PageContext> page, const RequestFields& fields, Raw raw,
                        MakeItem make_item)
        : page_(std::move(page)), fields_(fields), raw_(raw), make_item_(make_item) {}

    Variant Item(const Variant& name) override {
        if (name.is_missing()) return raw_(*page_);
        if (const auto number = try_number(name, fields_.all()))
            return make_item_(*page_, &fields_.all()[*number]);
        return make_item_(*page_, fields_.find(name.to<Text>()));
    }
    Object NewEnum() override {
        return names_of(fields_.all(),
                        [](const RequestFields::Field& field) { return field.name; });
    }
    std::int32_t Count() override { return static_cast<std::int32_t>(fields_.all().size()); }
    Variant Key(const Variant& index) override {
        if (const auto number = try_number(index, fields_.all()))
            return fields_.all()[*number].name;
        return index;
    }

private:
    const std::shared_ptr<PageContext> page_;
    const RequestFields& fields_;
    const Raw raw_;
    const MakeItem make_item_;
};

class VariablesObject final : public RequestDictionary {
public:
    explicit VariablesObject(std::shared_ptr<PageContext> page) : page_(std::move(page)) {}

    Variant Item(const Variant& name) override {
        if (name.is_missing()) return u"";
        const ServerVariables variables = server_variables(*page_);
        if (const auto number = try_number(name, variables)) return variables[*number].second;
        return value_of(variables, name.to<Text>());
    }
    Object NewEnum() override {
        return names_of(server_variables(*page_),
                        [](const auto& variable) { return variable.first; });
    }
    std::int32_t Count() override {
        return static_cast<std::int32_t>(server_variables(*page_).size());
    }
    Variant Key(const Variant& index) override {
        const ServerVariables variables = server_variables(*page_);
        if (const auto number = try_number(index, variables)) return variables[*number].first;
        return index;
    }

private:
    const std::shared_ptr<PageContext> page_;
};

}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto class_of<web::StringListObject> =
    describe_class<web::StringList>("Request.Values");
template <>
inline constexpr auto class_of<web::ReadCookieObject> =
    describe_class<web::ReadCookie>("Request.Cookie");
template <>
inline constexpr auto class_of<web::RequestFieldsObject> =
    describe_class<web::RequestDictionary>("Request.Fields");
template <>
inline constexpr auto class_of<web::VariablesObject> =
    describe_class<web::RequestDictionary>("Request.ServerVariables");
}  // namespace orvo

namespace orvo::web {
namespace {

Object values_object(const PageContext&, const RequestFields::Field* field) {
    return make<StringListObject>(field ? field->values : std::vector<Text>()).object();
}

// The form as it came, where that is a text.
Text form_text(const PageContext& page) {
    const bool is_urlencoded =
        page.request.header("Content-Type").starts_with("application/x-www-form-urlencoded");
    return is_urlencoded ? from_utf8(page.request.body.text()) : Text();
}

Text cookie_text(const PageContext& page) {
    Text all;
    for (const auto& cookie : page.cookies.all()) {
        if (!all.empty()) all += u"; ";
        all += cookie.name + u"=" + cookie.values.front();
    }
    return all;
}

Object cookie_object(const PageContext& page, const RequestFields::Field* field) {
    if (!field) return make<ReadCookieObject>(Text(), RequestFields()).object();
    return make<ReadCookieObject>(field->values.front(), cookie_keys_of(page.request, field->name))
        .object();
}

}  // namespace

RequestObject::RequestObject(std::shared_ptr<PageContext> page) : page_(std::move(page)) {}

Variant RequestObject::Item(const Text& name) {
    if (const auto* field = page_->query.fields.find(name)) return values_object(*page_, field);
    if (page_->form.fields.find(name))
        return values_object(*page_, page_->use_form().fields.find(name));
    if (const auto* field = page_->cookies.find(name)) return cookie_object(*page_, field);
    const Text variable = value_of(server_variables(*page_), name);
    if (!variable.empty()) return variable;
    return values_object(*page_, nullptr);
}

Object RequestObject::QueryString() {
    if (!query_)
        query_ =
            make<RequestFieldsObject>(
                page_, page_->query.fields,
                [](const PageContext& page) { return from_utf8(page.query.text); }, values_object)
                .object();
    return query_;
}

Object RequestObject::Form() {
    const RequestFields& fields = page_->use_form().fields;
    if (!form_) form_ = make<RequestFieldsObject>(page_, fields, form_text, values_object).object();
    return form_;
}

Object RequestObject::ServerVariables() {
    if (!variables_) variables_ = make<VariablesObject>(page_).object();
    return variables_;
}

Object RequestObject::Cookies() {
    if (!cookies_)
        cookies_ =
            make<RequestFieldsObject>(page_, page_->cookies, cookie_text, cookie_object).object();
    return cookies_;
}

std::int32_t RequestObject::TotalBytes() {
    return static_cast<std::int32_t>(std::min<std::uint64_t>(
        page_->request.body.size(), std::numeric_limits<std::int32_t>::max()));
}

Variant RequestObject::BinaryRead(Variant& count) {
    const std::string bytes = page_->read_body(count_of_bytes(count));
    count = static_cast<std::int32_t>(bytes.size());
    return Variant::bytes(bytes);
}

Object RequestObject::Files() {
    page_->use_form();
    if (!files_) files_ = files_object(page_);
    return files_;
}

}  // namespace orvo::web
