#pragma once

#include <gtest/gtest.h>

#include <optional>

#include "component/auth/filter_contract.h"
#include "host/web/site/web_app.h"
#include "platform/interfaces/call.h"
#include "platform/values/values.h"
#include "suite/authfilter/filter_connector.h"
#include "tests/host/web/test_site.h"

namespace orvo::web {

// A site of a few pages, guarded in part, and the filter.
class WebAppTest : public testing::Test {
protected:
    WebAppTest() {
        const auto& filter = class_of<authfilter::FilterConnectorObject>;
        connector_.emplace(from_utf8(filter.progid), filter.clsid,
                           [] { return make<authfilter::FilterConnectorObject>().object(); });
        pages_.write("/default.asp", "home");
        pages_.write("/sub/index.html", "<p>sub</p>");
        pages_.write("/style.css", "p{}");
        pages_.write("/secret.inc", "secret");
        pages_.write("/.hidden.txt", "secret");
        pages_.write("/site.ini",
                     "[SITE]\nGuard = /account/ = 1, /login/ = 1\n"
                     "LoginPage = /login/login.asp\nLoginCookie = LoginID\n"
                     "PageTimeout = 1\n");
        pages_.write("/account/default.asp", "account");
        pages_.write("/account/logo.svg", "<svg/>");
        pages_.write("/login/login.asp",
                     "<% Session('QUENDRAID') = 'G1'; Session('REMOTE_ACCOUNT') = 'cn=a';"
                     "   Session('REMOTE_USER') = 'jsmith';"
                     "   Response.Cookies('LoginID') = 'G1' %>in");
        pages_.write("/fail.asp",
                     "<% Session('kept') = 1; Response.Cookies('lost') = 1;\n"
                     "unknown(); %>");
        pages_.write("/kept.asp", "<%= Session('kept') %>");
        pages_.write("/account/who.asp", "<%= Request.ServerVariables('LOGON_USER') %>");
        pages_.write("/who.asp", "[<%= Request.ServerVariables('LOGON_USER') %>]");
        pages_.write("/form.asp", "<%= Request.Form('a') %>");
    }

    WebApp& app() {
        if (!app_)
            app_.emplace(read_site(pages_.root), pages_.sessions, health_, log_,
                         WebApp::Options{shows_details_, std::chrono::milliseconds(50), metrics_});
        return *app_;
    }
    HttpResponse get(const std::string& target, Headers headers = {}) {
        return app().handle({.target = target, .headers = std::move(headers)});
    }
    // What the login page leaves to the component.
    Ref<FilterConnector> register_login() {
        const auto connector = Ref<FilterConnector>::from(
            app().application().get(filter_connector_progid).to<Object>());
        call<&FilterConnector::Logout>(connector, u"G1");
        const auto user = call<&FilterConnector::CreateUserWithGUID>(connector, u"G1");
        call<&FilterUser::put_AccountPath>(user, u"cn=a");
        call<&FilterUser::Save>(user);
        call<&FilterConnector::RegisterLogin>(connector, u"a", Values{1}, u"G1", std::int16_t{1},
                                              10);
        return connector;
    }
    std::string header(const HttpResponse& response, std::string_view name) {
        std::string all;
        for (const auto& [key, value] : response.headers)
            if (key == name) all += (all.empty() ? "" : "\n") + value;
        return all;
    }
    // "name=value" of all cookies that an answer sets.
    std::string cookies(const HttpResponse& response) {
        std::string all;
        for (const auto& [key, value] : response.headers)
            if (key == "Set-Cookie") all += value.substr(0, value.find(';')) + "; ";
        return all;
    }

    TestSite pages_;
    std::optional<LocalClass> connector_;
    std::string trouble_;
    DirectoryHealth health_{[this] {
        if (!trouble_.empty()) throw std::runtime_error(trouble_);
    }};
    WebLog log_{{}};
    bool shows_details_ = false;
    std::shared_ptr<WebMetrics> metrics_ = std::make_shared<WebMetrics>();
    std::optional<WebApp> app_;
};

}  // namespace orvo::web
