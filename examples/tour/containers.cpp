#include <iostream>
#include <set>

#include "examples/tour/tour.h"

namespace tour {
namespace {

Object bound(const char16_t* progid, const Object& info) {
    const Object container = create_object(progid);
    late::call(container, u"BindAs",
               {late::call(info, u"GetMemScriptUser"), late::call(info, u"GetMemScriptCode")});
    return container;
}

Variant field(const Object& records, const char16_t* name) {
    const Object fields = late::get(records, u"Fields").to<Object>();
    return late::get(late::get(fields, u"Item", {name}).to<Object>(), u"Value");
}

// One column of a record set, with commas between.
Text joined(const Object& records, const char16_t* column) {
    Text text;
    for (; !late::get(records, u"EOF").to<bool>(); late::call(records, u"MoveNext"))
        text += (text.empty() ? u"" : u", ") + field(records, column).to<Text>();
    return text;
}

Object found(const Object& members, Values criteria) {
    return late::call(members, u"GetOrvoUsers", {std::move(criteria)}).to<Object>();
}

// Page after page, each continued behind the last name of the one before.
void page_through(const Object& members) {
    constexpr std::int16_t page_size = 50;
    std::set<Text> seen;
    int pages = 0;
    int rows = 0;
    for (Values criteria = {u"objectClass=*"};;) {
        const Object page =
            late::call(members, u"GetOrvoUsers", {criteria, u"", page_size}).to<Object>();
        const std::int32_t count = late::get(page, u"RecordCount").to<std::int32_t>();
        for (; !late::get(page, u"EOF").to<bool>(); late::call(page, u"MoveNext"))
            seen.insert(field(page, u"cn").to<Text>());
        ++pages;
        rows += count;
        if (count < page_size) break;
        criteria = {u"cn>=" + late::call(members, u"GetLastPageValue").to<Text>()};
    }
    show("users, in pages of 50", decimal(rows) + u" on " + decimal(pages) +
                                      u" pages, each once: " +
                                      (static_cast<int>(seen.size()) == rows ? u"yes" : u"no"));
    expect(static_cast<int>(seen.size()) == rows && rows >= 190, "each user once");
}

}  // namespace

void work_with_members(const Object& info) {
    std::cout << "\nThe users container\n";
    const Object members = bound(u"OrvoMembership.Members", info);
    const Object user =
        late::call(members, u"CreateUserWithAttributes",
                   {u"tina.tour", u"tour-sample", Values{u"sn", u"OrvoUserType", u"OrvoRole"},
                    Values{u"Tour", 1, Values{2, 24}}})
            .to<Object>();
    const Variant guid = late::get(user, u"GUID");
    show("tina.tour, created; her GUID", guid);

    const Object same = late::call(members, u"GetUserFromGUID", {guid}).to<Object>();
    show("found by it", late::get(same, u"CN"));
    expect(late::get(same, u"CN") == Variant(u"tina.tour"), "it should be tina.tour");

    show("named Smith", joined(found(members, {u"sn=Smith"}), u"cn"));
    show("those of them without a first name",
         joined(found(members, {u"sn=Smith", u"NOT givenName=*"}), u"cn"));

    const auto having = [&](std::int16_t role) {
        return joined(late::call(members, u"GetOrvoMembersHavingRole", {role, u"cn"}).to<Object>(),
                      u"cn");
    };
    const Text receivers = having(24);
    show("receivers, themselves or by profile", receivers);
    expect(receivers.find(u"tina.tour") != Text::npos, "tina.tour is one by her own role");

    page_through(members);
    late::call(members, u"DeleteUser", {u"tina.tour"});
    const Text left = joined(found(members, {u"cn=tina.tour"}), u"cn");
    show("tina.tour, deleted; found now", left.empty() ? u"nobody" : left);
    expect(left.empty(), "nobody should be found");
}

void work_with_profiles(const Object& info) {
    std::cout << "\nThe profiles container\n";
    const Object profiles = bound(u"OrvoMembership.Profiles", info);
    const Object members = bound(u"OrvoMembership.Members", info);
    const Object profile = late::call(profiles, u"CreateProfile", {u"Night Shift"}).to<Object>();
    late::call(profile, u"AssignRole", {std::int16_t(21), true});
    late::call(members, u"CreateUserWithAttributes",
               {u"otto.owl", u"tour-sample", Values{u"OrvoUserType", u"ProfileCN"},
                Values{1, u"Night Shift"}});
    show("who can publish now",
         joined(late::call(members, u"GetOrvoMembersHavingRole", {std::int16_t(21)}).to<Object>(),
                u"cn"));
    const Variant refused = late::call(profiles, u"DeleteProfile", {u"Night Shift"});
    show("deleted while otto.owl is in it", refused);
    expect(refused == Variant(false), "it has a user");
    late::call(members, u"DeleteUser", {u"otto.owl"});
    const Variant done = late::call(profiles, u"DeleteProfile", {u"Night Shift"});
    show("deleted after he left", done);
    expect(done == Variant(true), "it has no user");
}

}  // namespace tour
