#pragma once

// What the tests of users and of profiles share.

#include <map>

#include "component/entries/Profile.h"
#include "platform/objects/dictionary/dictionary.h"
#include "tests/component/component_test.h"

namespace orvo {

// What the activation's entries name, those of a profile too: who reads the log looks for it.
inline constexpr const char* activate = "OrvoMembership.User.IObjectControl_Activate";

inline constexpr const char* bind_sales =
    "Bind(dir01:389, ou=Profiles,o=Shop, pn=sales, cn=web,o=Shop, web-code, [])";

// The entry that a test binds where it does not matter which.
template <class Entry>
inline constexpr const char16_t* usual_name = u"jsmith";
template <>
inline constexpr const char16_t* usual_name<Profile> = u"sales";

// Entries of one class among recording neighbours, bound with the web account.
template <class Entry>
class EntryTest : public ComponentTest {
protected:
    static void bind(Behind<Entry>& entry, Text name = usual_name<Entry>,
                     Text account = u"cn=web,o=Shop", TextView web_code = u"web-code") {
        Secret password(web_code);
        entry.template call<&Entry::BindAs>(name, account, password);
    }
    static void bind(Entry& entry, Text name = usual_name<Entry>) {
        Text account = u"cn=web,o=Shop";
        Secret password(u"web-code");
        entry.BindAs(name, account, password);
    }
    static void bind(const Ref<Entry>& entry, Text name = usual_name<Entry>) {
        Text account = u"cn=web,o=Shop";
        Secret password(u"web-code");
        call<&Entry::BindAs>(entry, name, account, password);
    }

    // Each door to an unbound entry, with the settings loaded and nothing noted yet.
    template <class Body>
    void through_every_door(Body body) {
        load_settings();
        through_doors_to<Entry>(body);
    }
    // The same, bound to the usual one.
    template <class Body>
    void bound_through_every_door(Body body) {
        load_settings();
        through_doors_to<Entry>(body, [](Behind<Entry>& entry) { bind(entry); });
    }

    // A web session with these variables, as a login leaves it.
    static Object session(const std::map<Text, Text>& values) {
        const auto session = make<DictionaryObject>();
        for (const auto& [name, value] : values) {
            Variant key = name, item = value;
            call<&Dictionary::Add>(session, key, item);
        }
        return session.object();
    }
    // The session of jsmith.
    static Object login_session() {
        return session({{u"REMOTE_USER", u"jsmith"},
                        {u"REMOTE_ACCOUNT", u"un=jsmith,ou=Users,o=Shop"},
                        {u"REMOTE_PASSWORD", u"js-code"}});
    }
};

}  // namespace orvo
