// A tour of the component, as any program would use it: every object is created by its ProgID and
// called by name.
//
//   orvo-tour SITE.INI
//
// The directory is the sample shop of examples/directory; ORVO_SITE_CONFIG names the same site
// file.

#include "examples/tour/tour.h"

#include <iomanip>
#include <iostream>

namespace tour {

using namespace orvo;

int things_gone_wrong = 0;

void show(const std::string& what, const Text& value) {
    std::cout << "  " << std::left << std::setw(44) << what << to_utf8(value) << '\n';
}
void show(const std::string& what, const Variant& value) { show(what, value.to<Text>()); }

void expect(bool right, const std::string& what) {
    if (right) return;
    ++things_gone_wrong;
    std::cout << "  ^ this is wrong: " << what << '\n';
}

}  // namespace tour

namespace {

using namespace tour;

void check_passwords(const Text& site) {
    std::cout << "\nPassword checks\n";
    const Object validator = create_object(u"OrvoMembership.Validator");
    late::call(validator, u"setServerInfo", {site});
    const Variant right = late::call(validator, u"ValidatePassword", {u"jsmith", u"shop-sample"});
    show("jsmith with the right password", right);
    expect(right == Variant(0), "it should be 0");
    const Variant wrong = late::call(validator, u"ValidatePassword", {u"jsmith", u"guessed"});
    show("jsmith with a wrong one", wrong);
    expect(wrong == Variant(-1), "it should be -1");
    const Variant empty = late::call(validator, u"ValidatePassword", {u"jsmith", u""});
    show("jsmith with none (the server is not asked)", empty);
    expect(empty == Variant(-1), "it should be -1");
}

Object settings(const Text& site) {
    const Object info = create_object(u"OrvoMembership.ServerInfo");
    late::call(info, u"SetConfiguration", {site});
    return info;
}

void bind(const Object& entry, const Object& info, const Text& name) {
    late::call(entry, u"BindAs",
               {name, late::call(info, u"GetMemScriptUser"), late::call(info, u"GetMemScriptCode"),
                late::call(info, u"GetServerName"), late::call(info, u"GetUserContainer")});
}

void use_an_entry(const Object& info) {
    std::cout << "\nAn entry, bound with the service account\n";
    const Object entry = create_object(u"OrvoMembership.LdapAccess");
    bind(entry, info, u"cn=jsmith");
    show("cn", late::call(entry, u"GetAttribValue", {u"cn"}));
    show("mail", late::call(entry, u"GetAttribValue", {u"mail"}));
    show("OrvoUserType", late::call(entry, u"GetAttribValue", {u"OrvoUserType"}));
    show("CreditCardExpiryDate", late::call(entry, u"GetAttribValue", {u"CreditCardExpiryDate"}));

    const Variant before = late::call(entry, u"GetAttribValue", {u"Position"});
    late::call(entry, u"SetAttribValue", {u"Position", u"Führender Einkäufer"});
    const Variant written = late::call(entry, u"GetAttribValue", {u"Position"});
    show("Position, written", written);
    expect(written == Variant(u"Führender Einkäufer"), "what was written should come back");
    late::call(entry, u"ClearAttribValue", {u"Position"});
    const Variant cleared = late::call(entry, u"GetAttribValue", {u"Position"});
    show("Position, cleared", cleared);
    expect(cleared.is_empty(), "nothing should be left");
    late::call(entry, u"SetAttribValue", {u"Position", before});
}

void read_the_configuration_entry() {
    std::cout << "\nThe entry that holds the site's settings, by logical names\n";
    const Object entry = create_object(u"OrvoMembership.LdapAccess");
    late::call(entry, u"BindToConfig");
    for (const char16_t* name : {u"Company", u"StartPage"}) {
        const Variant attribute = late::call(entry, u"GetAttributeName", {name});
        show(to_utf8(name) + " (" + to_utf8(attribute.to<Text>()) + ")",
             late::call(entry, u"GetAttribValue", {attribute}));
    }
}

void read_an_account() {
    std::cout << "\nThe account under which work for registered users is done\n";
    const Object account = create_object(u"OrvoMembership.Account");
    late::call(account, u"Init", {std::int16_t(1)});
    const Variant user = late::get(account, u"NTUser");
    show("NTUser", user);
    expect(!user.to<Text>().empty(), "it should have a name");
}

void use_a_user(const Object& info) {
    std::cout << "\nA user, bound with the service account, and its typed properties\n";
    const Variant service = late::call(info, u"GetMemScriptUser");
    const Variant code = late::call(info, u"GetMemScriptCode");
    const Object user = create_object(u"OrvoMembership.User");
    late::call(user, u"BindAs", {u"jsmith", service, code});
    show("FirstName, LastName",
         late::get(user, u"FirstName").to<Text>() + u" " + late::get(user, u"LastName").to<Text>());
    show("SpendLimit (currency)", late::get(user, u"SpendLimit"));
    show("CreditCardExpiryDate (date)", late::get(user, u"CreditCardExpiryDate"));
    show("OutOfOfficeOn (boolean)", late::get(user, u"OutOfOfficeOn"));
    show("NTUser (of the account for its type)", late::get(user, u"NTUser"));

    const Variant limit = late::get(user, u"SpendLimit");
    late::put(user, u"SpendLimit", Currency{20000000});
    show("SpendLimit, written", late::get(user, u"SpendLimit"));
    expect(late::get(user, u"SpendLimit") == Variant(Currency{20000000}), "it should be 2000");
    late::put(user, u"SpendLimit", limit);

    show("has role 2 (buyer)", late::call(user, u"HasRole", {std::int16_t(2)}));
    expect(!late::get(user, u"FinancialRole").to<bool>(), "no such role yet");
    late::put(user, u"FinancialRole", true);
    show("FinancialRole, assigned", late::get(user, u"FinancialRole"));
    expect(late::get(user, u"FinancialRole").to<bool>(), "the role should be there");
    late::put(user, u"FinancialRole", false);

    const Object other = create_object(u"OrvoMembership.User");
    late::call(other, u"BindAs", {u"glee", service, code});
    const Object profile = late::get(other, u"Profile").to<Object>();
    show("glee has no roles; her profile is", late::get(profile, u"CN"));
    const Variant approves = late::call(other, u"HasRole", {std::int16_t(4)});
    show("has role 4 (approver), by her profile", approves);
    expect(approves == Variant(true), "the profile's roles should count");

    try {
        late::call(user, u"CheckAppUserAccess", {u"Warehouse", std::int16_t(99)});
        expect(false, "the application should have been refused");
    } catch (const Failure& failure) {
        show("application 99 refused with", u"0x" + hexadecimal(failure.number));
        expect(failure.number == error_number(0x8004032B), "it should be 0x8004032B");
    }
}

void change_a_password(const Object& info) {
    std::cout << "\nA password, changed with the old one\n";
    const Variant service = late::call(info, u"GetMemScriptUser");
    const Variant code = late::call(info, u"GetMemScriptCode");
    const Object user = create_object(u"OrvoMembership.User");
    late::call(user, u"BindAs", {u"glee", service, code});
    late::call(user, u"ChangePassword", {u"shop-sample", u"better-sample"});
    const Object validator = create_object(u"OrvoMembership.Validator");
    const Variant now = late::call(validator, u"ValidatePassword", {u"glee", u"better-sample"});
    show("glee with the new password", now);
    expect(now == Variant(0), "it should be 0");
    try {
        late::call(user, u"ChangePassword", {u"shop-sample", u"another"});
        expect(false, "the old password should have been refused");
    } catch (const Failure& failure) {
        show("the old one is refused with", u"0x" + hexadecimal(failure.number));
        expect(failure.number == error_number(0x80040325), "it should be 0x80040325");
    }
    late::call(user, u"ChangePassword", {u"better-sample", u"shop-sample"});
}

void fail_once(const Object& info) {
    std::cout << "\nA call that fails, as its caller sees it\n";
    const Object entry = create_object(u"OrvoMembership.LdapAccess");
    try {
        bind(entry, info, u"cn=nobody.at.all");
        expect(false, "the bind should have failed");
    } catch (const Failure& failure) {
        show("number", u"0x" + hexadecimal(failure.number));
        show("source", failure.source);
        std::cout << "  description" << to_utf8(failure.description) << '\n';
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: orvo-tour SITE.INI\n";
        return 2;
    }
    try {
        const Text site = from_utf8(argv[1]);
        check_passwords(site);
        const Object info = settings(site);
        use_an_entry(info);
        read_the_configuration_entry();
        read_an_account();
        use_a_user(info);
        change_a_password(info);
        tour::work_with_members(info);
        tour::work_with_profiles(info);
        fail_once(info);
    } catch (const Failure& failure) {
        std::cout << "\nStopped by a failure: " << failure.what() << '\n';
        return 1;
    }
    return things_gone_wrong == 0 ? 0 : 1;
}
