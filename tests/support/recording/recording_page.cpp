#include "tests/support/recording/recording_page.h"

#include "platform/values/values.h"
#include "tests/support/clear_text.h"

namespace orvo {
namespace {

// The journal's name of an indexed assignment, as a script would write it.
std::string assigned(const char* object, const Text& name) {
    return std::string(object) + "(" + to_utf8(name) + ") =";
}

template <class Map>
Variant found_in(const Map& values, const Text& name) {
    const auto found = values.find(name);
    return found == values.end() ? Variant() : Variant(found->second);
}

}  // namespace

class RequestRecorder {
public:
    explicit RequestRecorder(RecordingPage& page) : page_(page) {}
    Text Cookies(const Text& name) {
        page_.journal().call("Request.Cookies", {name});
        return found_in(page_.cookies, name).to<Text>();
    }

private:
    RecordingPage& page_;
};

class CookieRecorder {
public:
    CookieRecorder(RecordingPage& page, Text name) : page_(page), name_(std::move(name)) {}
    void put_Path(const Text& path) {
        page_.journal().call(assigned("Response.Cookies.Path", name_), {path});
    }

private:
    RecordingPage& page_;
    Text name_;
};

class ResponseRecorder {
public:
    explicit ResponseRecorder(RecordingPage& page) : page_(page) {}
    Object Cookies(const Text& name);
    void put_Cookies(const Text& name, const Variant& value) {
        page_.journal().call(assigned("Response.Cookies", name), {value});
    }

private:
    RecordingPage& page_;
};

class SessionRecorder {
public:
    explicit SessionRecorder(RecordingPage& page) : page_(page) {}
    Variant Value(const Text& name) {
        page_.journal().call("Session", {name});
        return found_in(page_.session_values, name);
    }
    void put_Value(const Text& name, const Variant& value) {
        page_.journal().call(assigned("Session", name), {value});
        page_.session_values[name] = value;
    }

private:
    RecordingPage& page_;
};

class ApplicationRecorder {
public:
    explicit ApplicationRecorder(RecordingPage& page) : page_(page) {}
    Variant Value(const Text& name) {
        page_.journal().call("Application", {name});
        return found_in(page_.application_values, name);
    }

private:
    RecordingPage& page_;
};

// clang-format off
template <>
inline constexpr auto table_of<RequestRecorder> = describe<RequestRecorder>(
    "IRequestRecorder", "7e57ab1e-0000-4000-8000-000000000011",
    get<&RequestRecorder::Cookies>("Cookies", "name"));
template <>
inline constexpr auto table_of<CookieRecorder> = describe<CookieRecorder>(
    "ICookieRecorder", "7e57ab1e-0000-4000-8000-000000000012",
    put<&CookieRecorder::put_Path>("Path", "path"));
template <>
inline constexpr auto table_of<ResponseRecorder> = describe<ResponseRecorder>(
    "IResponseRecorder", "7e57ab1e-0000-4000-8000-000000000013",
    get<&ResponseRecorder::Cookies>("Cookies", "name"),
    put<&ResponseRecorder::put_Cookies>("Cookies", "name", "value"));
template <>
inline constexpr auto table_of<SessionRecorder> = describe<SessionRecorder>(
    "ISessionRecorder", "7e57ab1e-0000-4000-8000-000000000014",
    get<&SessionRecorder::Value>("Value", "name").as_default(),
    put<&SessionRecorder::put_Value>("Value", "name", "value").as_default());
template <>
inline constexpr auto table_of<ApplicationRecorder> = describe<ApplicationRecorder>(
    "IApplicationRecorder", "7e57ab1e-0000-4000-8000-000000000015",
    get<&ApplicationRecorder::Value>("Value", "name").as_default());
// clang-format on

template <>
inline constexpr auto class_of<RequestRecorder> = describe_class<RequestRecorder>("Test.Request");
template <>
inline constexpr auto class_of<CookieRecorder> = describe_class<CookieRecorder>("Test.Cookie");
template <>
inline constexpr auto class_of<ResponseRecorder> =
    describe_class<ResponseRecorder>("Test.Response");
template <>
inline constexpr auto class_of<SessionRecorder> = describe_class<SessionRecorder>("Test.Session");
template <>
inline constexpr auto class_of<ApplicationRecorder> =
    describe_class<ApplicationRecorder>("Test.Application");

Object ResponseRecorder::Cookies(const Text& name) {
    return make<CookieRecorder>(page_, name).object();
}

RecordingPage::RecordingPage(Journal& journal)
    : request(make<RequestRecorder>(*this).object()),
      response(make<ResponseRecorder>(*this).object()),
      session(make<SessionRecorder>(*this).object()),
      application(make<ApplicationRecorder>(*this).object()),
      journal_(journal) {}

class FilterUserRecorder final : public FilterUser {
public:
    FilterUserRecorder(RecordingFilter& filter, Text guid)
        : filter_(filter), guid_(std::move(guid)) {
        ++filter_.alive;
    }
    ~FilterUserRecorder() { --filter_.alive; }

    Text GUID() override { return guid_; }
    Text UserName() override { return {}; }
    void put_UserName(const Text& name) override { note("UserName =", name); }
    Text AccountPath() override { return {}; }
    void put_AccountPath(const Text& path) override { note("AccountPath =", path); }
    Secret Password() override { return {}; }
    void put_Password(const Secret& password) override { note("Password =", clear_text(password)); }
    Text NTUser() override { return {}; }
    void put_NTUser(const Text& user) override { note("NTUser =", user); }
    Secret NTPassword() override { return {}; }
    void put_NTPassword(const Secret& password) override {
        note("NTPassword =", clear_text(password));
    }
    void Save() override { filter_.journal().call("Save"); }

private:
    void note(const char* operation, const Text& value) {
        filter_.journal().call(operation, {value});
    }

    RecordingFilter& filter_;
    Text guid_;
};

class ConnectorRecorder final : public FilterConnector {
public:
    explicit ConnectorRecorder(RecordingFilter& filter) : filter_(filter) {}

    Ref<FilterUser> FindUserByGUID(const Text& guid) override;
    Ref<FilterUser> CreateUserWithGUID(const Text& guid) override;
    bool RegisterLogin(const Text& user, const Variant& applications, const Text& guid,
                       std::int16_t multi_login, std::int32_t timeout) override {
        filter_.journal().call("RegisterLogin", {user, applications, guid, multi_login, timeout});
        return false;
    }
    bool IsLoggedIn(const Text&, std::int32_t) override { return false; }
    void Logout(const Text&) override {}

private:
    RecordingFilter& filter_;
};

template <>
inline constexpr auto class_of<FilterUserRecorder> = describe_class<FilterUser>("Test.FilterUser");
template <>
inline constexpr auto class_of<ConnectorRecorder> =
    describe_class<FilterConnector>("Test.FilterConnector");

Ref<FilterUser> ConnectorRecorder::FindUserByGUID(const Text& guid) {
    filter_.journal().call("FindUserByGUID", {guid});
    return filter_.known.contains(guid) ? make<FilterUserRecorder>(filter_, guid) : nullptr;
}

Ref<FilterUser> ConnectorRecorder::CreateUserWithGUID(const Text& guid) {
    filter_.journal().call("CreateUserWithGUID", {guid});
    if (filter_.refuses_new) return nullptr;
    filter_.known.insert(guid);
    return make<FilterUserRecorder>(filter_, guid);
}

RecordingFilter::RecordingFilter(Journal& journal) : journal_(journal) {
    class_.emplace(filter_connector_progid, guid("7e57ab1e-0000-4000-8000-000000000016"), [this] {
        journal_.call("new TavikAuthFilter.Connector");
        return make<ConnectorRecorder>(*this).object();
    });
}

Object RecordingFilter::connector() { return make<ConnectorRecorder>(*this).object(); }

}  // namespace orvo
