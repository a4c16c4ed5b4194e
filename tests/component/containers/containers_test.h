#pragma once

#include "component/common/OrvoMemErrors.h"
#include "component/containers/Members.h"
#include "platform/objects/recordset/builder.h"
#include "platform/objects/recordset/record_set.h"
#include "tests/component/entries/user_test.h"

namespace orvo {

using testing::ElementsAre;
using testing::IsEmpty;

inline constexpr const char* no_current_record =
    "Either BOF or EOF is True, or the current record has been deleted. Requested operation "
    "requires a current record.";

// What is true of every attribute list that a search asks for.
inline constexpr const char* usual_columns = "[CN, BusinessPartnerID, mail, givenName, sn]";

// The users and profiles containers among recording neighbours.
class ContainersTest : public UserTest {
protected:
    // A record set as a provider answers it; `rows` have as many values as there are columns.
    static Object records(const std::vector<Text>& columns,
                          const std::vector<std::vector<Variant>>& rows) {
        RecordSetBuilder builder(columns);
        for (std::vector<Variant> row : rows) builder.add(std::move(row));
        return builder.open().object();
    }
    // Users with the default columns of a search, named.
    static Object users(std::initializer_list<const char16_t*> names) {
        std::vector<std::vector<Variant>> rows;
        for (const char16_t* name : names)
            rows.push_back({Text(name), std::int32_t{7}, Text(name) + u"@x", u"Given", u"Sur"});
        return records({u"CN", u"BusinessPartnerID", u"mail", u"givenName", u"sn"}, rows);
    }
    static Variant no_criteria() { return Object(); }

    static void bind(Behind<Members>& members, Text user = u"cn=web,o=Shop",
                     TextView web_code = u"web-code") {
        Secret password(web_code);
        members.call<&Members::BindAs>(user, password);
    }
    static Ref<User> create(Behind<Members>& members, Text name = u"jsmith",
                            TextView s3cret = u"s3cret") {
        Secret password(s3cret);
        return members.call<&Members::CreateUser>(name, password);
    }

    // Each door to an unbound container, with the settings loaded and nothing noted yet.
    template <class Body>
    void members_through_every_door(Body body) {
        load_settings();
        through_doors_to<Members>(body);
    }
    // The same, bound with the web account.
    template <class Body>
    void bound_members_through_every_door(Body body) {
        load_settings();
        through_doors_to<Members>(body, [](Behind<Members>& members) { bind(members); });
    }

    LocalClass user_class_ = local_class<User>();
    LocalClass members_class_ = local_class<Members>();
};

// The calls of a search of the users container, bound with the usual account.
inline constexpr const char* connect_users =
    "Connect(dir01:389, ou=Users,o=Shop, cn=web,o=Shop, web-code)";
inline std::string execute(const std::string& filter, const std::string& columns = usual_columns,
                           int maximum = 1000) {
    return "Execute(" + filter + ", " + columns + ", " + std::to_string(maximum) + ")";
}

}  // namespace orvo
