#include <functional>

#include "component/common/Index16.h"
#include "component/common/Lib_ErrorHandling.h"
#include "component/common/OrvoMemErrors.h"
#include "component/config/SharedServerInfo.h"
#include "component/containers/Members.h"
#include "component/containers/record_fields.h"
#include "platform/objects/recordset/record_set.h"

namespace orvo {
namespace {

constexpr std::int16_t usual_page_size = 1000;

// The filter items of the criteria, each in parentheses. An object reference says that there are
// none.
template <class Rewrite>
Text filter_items(const Variant& criteria, Rewrite rewrite) {
    Text items;
    if (criteria.is_object()) return items;
    const Values elements = criteria.to<Values>();
    any_index16(elements.lower_bound(), elements.upper_bound(), [&](std::int32_t i) {
        items += u"(" + rewrite(elements[i].to<Text>()) + u")";
        return false;
    });
    return items;
}

// "NOT" becomes "!" wherever it stands, in upper case alone. Nothing tells the operator from a part
// of a value: callers write a name with it as "\4eOT" (docs/members.md).
Text member_filter(const Variant& criteria) {
    return u"(OrvoUserType=*)" +
           filter_items(criteria, [](const Text& item) { return replaced(item, u"NOT", u"!"); });
}

Values default_attributes() { return {u"CN", u"BusinessPartnerID", u"mail", u"givenName", u"sn"}; }

Ref<RecordSet> new_result_set() {
    auto records = make<RecordSetObject>();
    const auto fields = call<&RecordSet::Fields>(records);
    call<&Fields::Append>(fields, u"BusinessPartnerID", adInteger, 0, adFldIsNullable,
                          Variant::missing());
    for (const char16_t* name : {u"mail", u"cn", u"givenName", u"sn"})
        call<&Fields::Append>(fields, name, adVarWChar, 255, adFldUnspecified, Variant::missing());
    call<&RecordSet::Open>(records, Variant::missing(), Variant::missing(), adOpenUnspecified,
                           adLockUnspecified, -1);
    return records;
}

// Whether a field holds nothing: no value, an empty text, or a list of none.
bool is_nothing(const Variant& value) {
    if (value.is_empty() || value.is_null()) return true;
    if (!value.is_array()) return value.to<Text>().empty();
    const Values values = value.to<Values>();
    return values.count() == 0 || (values.count() == 1 && is_nothing(values[values.lower_bound()]));
}

// The row's name as far as it has one: nothing is raised for the sake of a note.
Text name_for_the_log(RowFields& row) {
    try {
        const Variant cn = row.value(u"cn");
        return (cn.is_array() ? element(cn, 0) : cn).to<Text>();
    } catch (const Failure&) {
        return {};
    }
}

template <class Visit>
void for_each_row(const Ref<RecordSet>& records, Visit visit) {
    for (; !call<&RecordSet::IsEof>(records); call<&RecordSet::MoveNext>(records)) visit();
}

}  // namespace

Ref<RecordSet> Members::QueryMembers(Text& filter, const Variant& page_size,
                                     const Variant& attributes) {
    constexpr const char16_t* source = u"OrvoMembership.Members.QueryMembers";
    const auto reword = [&](Failure& failure) {
        failure.source = source;
        failure.description = u"The following query failed: " + filter;
    };
    return trapped_rewording(source, reword, [&] {
        ServerInfo& info = *shared_server_info();
        const Variant size = page_size.is_missing() ? Variant(usual_page_size) : page_size;
        filter = u"(& (objectClass=" + info.first_user_class() + u")" + filter + u")";
        const auto search = mAccount.connected_search(*mPMMCreator, info.user_container());
        Variant columns = attributes.is_missing() ? Variant(default_attributes()) : attributes;
        return Ref<RecordSet>::from(
            call<&DirectorySearch::Execute>(search, filter, columns, size.to<std::int16_t>()));
    });
}

Ref<RecordSet> Members::QueryMembersEx(Text& filter) {
    return trapped(u"OrvoMembership.Members.QueryMembersEx", [&] {
        ServerInfo& info = *shared_server_info();
        const auto search = mAccount.connected_search(*mPMMCreator, info.user_container());
        filter = u"(&(objectClass=" + info.first_user_class() + u")" + filter + u")";
        Variant columns =
            Values{u"cn", u"BusinessPartnerID", u"mail", u"givenName", u"sn", u"orvorole"};
        return Ref<RecordSet>::from(
            call<&DirectorySearch::Execute>(search, filter, columns, usual_page_size));
    });
}

Object Members::GetOrvoUsers(const Variant& iCriteria, const Text&, const Variant& iPageSize) {
    return trapped(u"OrvoMembership.Members.GetOrvoUsers", [&] {
        const Variant page_size = iPageSize.is_missing() ? Variant(usual_page_size) : iPageSize;
        Text filter = member_filter(iCriteria);
        const auto records = QueryMembers(filter, page_size, Variant::missing());
        if (!records) return Object();
        const std::int64_t count = call<&RecordSet::RecordCount>(records);
        if (Variant(count).to<std::int16_t>() == page_size.to<std::int16_t>()) {
            call<&RecordSet::MoveLast>(records);
            mLastPageValue = field_value(records, u"cn").to<Text>() + u"!";
            call<&RecordSet::MoveFirst>(records);
        }
        return records.object();
    });
}

Object Members::GetOrvoUsersEx(const Variant& iCriteria, const Variant& i_vAttributeNames,
                               const Text&, const Variant& iPageSize) {
    // Reported as GetOrvoUsers: both searches have that one name in the log.
    return trapped(u"OrvoMembership.Members.GetOrvoUsers", [&] {
        Text filter = member_filter(iCriteria);
        return QueryMembers(filter, iPageSize, i_vAttributeNames).object();
    });
}

Text Members::GetLastPageValue() {
    return trapped(u"OrvoMembership.Members.GetLastPageValue", [&] { return mLastPageValue; });
}

Object Members::GetOrvoMembersHavingRole(std::int16_t& iRole, Text& iSortFields) {
    return trapped(u"OrvoMembership.Members.GetOrvoMembersHavingRole", [&] {
        Variant no_criteria = Object();
        return GetOrvoMembersHavingRoleEx(iRole, no_criteria, iSortFields);
    });
}

// The filter part for users of the profiles that have the role; empty where no profile has it.
Text Members::profiles_having(std::int16_t role) {
    ServerInfo& info = *shared_server_info();
    const auto search = mAccount.connected_search(*mPMMCreator, info.profile_container());
    Text filter =
        u"(&(objectClass=" + info.profile_class() + u")(OrvoRole=" + decimal(role) + u"))";
    Variant columns = Values{u"cn"};
    const auto profiles = Ref<RecordSet>::from(
        call<&DirectorySearch::Execute>(search, filter, columns, usual_page_size));
    RowFields row(profiles);
    Text part;
    int count = 0;
    for_each_row(profiles, [&] {
        if (count++ != 0) part += u" ";
        part += u"(ProfileCN=" + row.value(u"cn").to<Text>() + u")";
    });
    CloseRecordSEt(profiles);
    return count > 1 ? u"(|" + part + u")" : part;
}

Object Members::GetOrvoMembersHavingRoleEx(std::int16_t& iRole, Variant& iCriteria,
                                           Text& iSortFields) {
    constexpr const char16_t* source = u"OrvoMembership.Members.GetOrvoMembersHavingRoleEx";
    return trapped(source, [&] {
        settings_or_raise(emErrServerInfoNotCreated, source, u"ServerInfo not available");
        const Text user_part = u"(!OrvoUserType = 0)" + filter_items(iCriteria, std::identity());
        const auto result = new_result_set();
        RowFields target(result);
        const auto add = [&](RowFields& row) {
            call<&RecordSet::AddNew>(result, Variant::missing(), Variant::missing());
            AddUserToResultSet(row, target);
        };

        const Text profile_part = profiles_having(iRole);
        if (!profile_part.empty()) {
            Text filter = user_part + profile_part;
            const auto users = QueryMembersEx(filter);
            RowFields row(users);
            // Who has roles of one's own is found by the next query, whatever the profile says.
            for_each_row(users, [&] {
                if (is_nothing(row.value(u"OrvoRole"))) add(row);
            });
            CloseRecordSEt(users);
        }

        Text filter = u"(OrvoRole=" + decimal(iRole) + u")" + user_part;
        const auto users = QueryMembers(filter, Variant::missing(), Variant::missing());
        RowFields row(users);
        for_each_row(users, [&] { add(row); });
        CloseRecordSEt(users);

        if (call<&RecordSet::RecordCount>(result) != 0) {
            call<&RecordSet::MoveFirst>(result);
            if (!iSortFields.empty()) call<&RecordSet::SetSort>(result, iSortFields);
        }
        return result.object();
    });
}

void Members::AddUserToResultSet(RowFields& source, RowFields& target) {
    constexpr const char16_t* partner = u"BusinessPartnerID";
    try {
        target.put_value(partner, source.value(partner));
    } catch (...) {
        // A partner that is no 32-bit number is no reason to lose the row: it is logged, and 0.
        target.put_value(partner, std::int32_t{0});
        log_current_exception(u"OrvoMembership.Members.AddUserToResultSet",
                              u"Invalid BusinessPartnerID for user " + name_for_the_log(source) +
                                  u" -- value set to 0 in resultset");
    }
    for (const char16_t* name : {u"mail", u"cn", u"sn", u"givenName"})
        target.put_value(name, source.value(name));
}

void Members::CloseRecordSEt(const Ref<RecordSet>& records) {
    trapped(u"OrvoMembership.Members.CloseRecordSEt", [&] {
        if (records && call<&RecordSet::State>(records) == adStateOpen)
            call<&RecordSet::Close>(records);
    });
}

}  // namespace orvo
