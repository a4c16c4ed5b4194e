#pragma once

#include <map>
#include <optional>
#include <set>

#include "component/auth/filter_contract.h"
#include "platform/module/local_class.h"
#include "tests/support/recording/journal.h"

namespace orvo {

// What a web page's object context holds, and the web server's authorization filter: they note what
// is done to them ("Response.Cookies(ShopLogin) = A1", "RegisterLogin(…)") and answer what they
// were told to; each operation can be refused in the journal under its name. They outlive their
// objects.
class RecordingPage {
public:
    explicit RecordingPage(Journal& journal);

    Object request;
    Object response;
    Object session;
    Object application;

    std::map<Text, Text> cookies;  // what the browser brought
    std::map<Text, Variant> session_values;
    std::map<Text, Variant> application_values;

    Journal& journal() { return journal_; }

private:
    Journal& journal_;
};

// The filter's connector under its ProgID, as long as this lives.
class RecordingFilter {
public:
    explicit RecordingFilter(Journal& journal);

    Object connector();

    std::set<Text> known;      // GUIDs with a record
    bool refuses_new = false;  // it makes no record
    int alive = 0;             // how many records are in use

    Journal& journal() { return journal_; }

private:
    Journal& journal_;
    std::optional<LocalClass> class_;
};

}  // namespace orvo
