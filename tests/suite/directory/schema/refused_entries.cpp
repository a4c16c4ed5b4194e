#include "tests/suite/directory/schema/refused_entries.h"

namespace orvo::directory {
namespace {

const Attribute user = {"objectClass", {"orvoPerson", "top"}};
const Attribute role = {"objectClass", {"organizationalRole"}};
const Attribute any_role = {"objectClass", {"organizationalRole", "extensibleObject"}};

Attribute classes(std::vector<std::string> names) { return {"objectClass", std::move(names)}; }

AddCase with(Attribute attribute, int code = 0, std::string sentence = {}) {
    return {"cn=x", {user, std::move(attribute)}, code, std::move(sentence)};
}

// One value of an attribute that `holder`, a class, allows.
AddCase value(const Attribute& holder, const std::string& attribute, const std::string& value,
              bool is_valid) {
    if (is_valid) return {"cn=x", {holder, {attribute, {value}}}};
    return {
        "cn=x", {holder, {attribute, {value}}}, 21, attribute + ": value #0 invalid per syntax"};
}

std::vector<AddCase> made_add_cases() {
    std::vector<AddCase> cases = {
        // Which attributes there are.
        with({"sn", {"Smith"}}),
        with({"SURNAME", {"Smith"}}),
        with({"2.5.4.4", {"Smith"}}),
        with({"sn;lang-de", {"Schmidt"}}),
        with({"nosuch", {"1"}}, 17, "nosuch: attribute type undefined"),
        with({"NoSuch;lang-de", {"1"}}, 17, "NoSuch;lang-de: attribute type undefined"),
        with({"nosuch;x-foo", {"1"}}, 17, "nosuch;x-foo: attribute type undefined"),
        with({"1.2.3.4", {"1"}}, 17, "1.2.3.4: attribute type undefined"),
        with({"9x", {"1"}}, 17, "9x: attribute type undefined"),
        with({"bad name", {"1"}}, 17,
             "bad name: AttributeDescription contains inappropriate characters"),
        with({"s_n", {"1"}}, 17, "s_n: AttributeDescription contains inappropriate characters"),
        with({";x", {"1"}}, 17, ";x: AttributeDescription contains inappropriate characters"),
        with({"", {"1"}}, 17, ": empty AttributeDescription"),
        with({"cn;", {"1"}}, 17, "cn;: zero length option is invalid"),
        with({"sn;x-foo", {"1"}}, 17, "sn;x-foo: unrecognized option"),
        with({"sn;lang-", {"1"}}, 17, "sn;lang-: inappropriate use of tag range option"),
        with({"sn;binary", {"1"}}, 17, "sn;binary: option \"binary\" not supported with type"),

        // Sets of values.
        with({"OrvoRole", {"1", "2"}}),
        with({"OrvoRole", {"1", "x", "2"}}, 21, "OrvoRole: value #1 invalid per syntax"),
        with({"OrvoRole", {"1", "", "2"}}, 21, "OrvoRole: value #1 invalid per syntax"),
        with({"OrvoRole", {"1", "2", "1"}}, 20, "OrvoRole: value #0 provided more than once"),
        with({"OrvoRole", {"9", "8", "7", "3", "8", "7"}}, 20,
             "OrvoRole: value #1 provided more than once"),
        with({"OrvoRole", {"4", "5", "5", "4"}}, 20, "OrvoRole: value #1 provided more than once"),
        with({"sn", {"Smith", "smith"}}, 20, "sn: value #0 provided more than once"),
        with({"sn", {"de  Vries", "De Vries"}}, 20, "sn: value #0 provided more than once"),
        with({"facsimileTelephoneNumber", {"1", "1"}}, 20,
             "facsimileTelephoneNumber: value #0 provided more than once"),
        with({"userPassword", {"{SSHA}a", "{SSHA}a"}}, 20,
             "userPassword: value #0 provided more than once"),
        with({"SURNAME", {"a", "A"}}, 20, "sn: value #0 provided more than once"),
        with({"OrvoGUID", {"a", "b"}}, 19, "OrvoGUID: multiple values provided"),
        with({"ORVOGUID", {"a", "A"}}, 19, "ORVOGUID: multiple values provided"),
        with({"OrvoUserType", {"1", "x"}}, 21, "OrvoUserType: value #1 invalid per syntax"),
        {"cn=x",
         {role, {"telephoneNumber", {"+44 1-2", "+4412"}}},
         20,
         "telephoneNumber: value #0 provided more than once"},
        {"cn=x",
         {classes({"groupOfNames"}), {"member", {"cn=A,o=x", "CN=a, o=X"}}},
         20,
         "member: value #0 provided more than once"},
        {"cn=x",
         {user, {"SURNAME", {"1"}}, {"sn", {"2"}}},
         20,
         "attribute 'sn' provided more than once"},
        {"cn=x",
         {user, {"sn;lang-DE", {"1"}}, {"sn;lang-de", {"2"}}},
         20,
         "attribute 'sn;lang-de' provided more than once"},
        {"cn=x", {user, {"OrvoGUID;lang-de", {"a"}}, {"OrvoGUID", {"b"}}}},

        // What the directory alone writes.
        with({"creatorsName", {"cn=a"}}, 19, "creatorsName: no user modification allowed"),
        with({"CREATORSNAME", {"cn=a"}}, 19, "CREATORSNAME: no user modification allowed"),
        with({"hasSubordinates", {"TRUE"}}, 19, "hasSubordinates: no user modification allowed"),
        with({"structuralObjectClass", {"person"}}, 19,
             "structuralObjectClass: no user modification allowed"),
        with({"entryUUID", {"x"}}, 21, "entryUUID: value #0 invalid per syntax"),
        with({"modifyTimestamp", {"x"}}, 21, "modifyTimestamp: value #0 invalid per syntax"),
        with({"pwdChangedTime", {"20200101000000Z"}}, 19,
             "pwdChangedTime: no user modification allowed"),
        with({"pwdReset", {"TRUE"}}),

        // Classes.
        {"cn=x", {{"cn", {"x"}}}, 65, "no objectClass attribute"},
        {"cn=x", {classes({"nosuch", "top"})}, 21, "objectClass: value #0 invalid per syntax"},
        {"cn=x",
         {classes({"orvoPerson", "top", "cn"})},
         21,
         "objectClass: value #2 invalid per syntax"},
        {"cn=x",
         {classes({"orvoPerson", "top", "TOP"})},
         20,
         "objectClass: value #1 provided more than once"},
        {"cn=x",
         {classes({"top", "2.5.6.0", "orvoPerson"})},
         20,
         "objectClass: value #0 provided more than once"},
        {"cn=x", {classes({"top"})}, 65, "no structural object class provided"},
        {"cn=x", {classes({"orvoMember"})}, 65, "no structural object class provided"},
        {"cn=x", {classes({"orvoUser"})}, 65, "no structural object class provided"},
        {"cn=x",
         {classes({"orvoPerson", "person"}), {"sn", {"x"}}},
         65,
         "invalid structural object class chain (orvoPerson/person)"},
        {"cn=x",
         {classes({"person", "organizationalPerson", "orvoProfile"})},
         65,
         "invalid structural object class chain (organizationalPerson/orvoProfile)"},
        {"cn=x",
         {classes({"residentialPerson", "person", "organizationalPerson"})},
         65,
         "invalid structural object class chain (residentialPerson/organizationalPerson)"},
        {"cn=x", {classes({"person", "organizationalPerson"}), {"sn", {"x"}}}},
        {"cn=x", {classes({"organizationalPerson"}), {"sn", {"x"}}}},
        {"cn=x", {classes({"PERSON"})}, 65, "object class 'person' requires attribute 'sn'"},
        {"cn=x", {classes({"2.5.6.6"})}, 65, "object class 'person' requires attribute 'sn'"},
        {"cn=x",
         {classes({"residentialPerson"})},
         65,
         "object class 'residentialPerson' requires attribute 'sn'"},
        {"sn=x",
         {classes({"residentialPerson"})},
         65,
         "object class 'residentialPerson' requires attribute 'cn'"},
        {"cn=x",
         {classes({"person", "simpleSecurityObject"})},
         65,
         "object class 'person' requires attribute 'sn'"},
        {"cn=x",
         {classes({"simpleSecurityObject", "person"})},
         65,
         "object class 'simpleSecurityObject' requires attribute 'userPassword'"},
        {"cn=x",
         {classes({"organizationalRole", "pwdPolicy"})},
         65,
         "object class 'pwdPolicy' requires attribute 'pwdAttribute'"},
        {"cn=x",
         {classes({"person", "orvoUser"}), {"sn", {"x"}}},
         65,
         "instantiation of abstract objectClass 'orvoUser' not allowed"},
        {"cn=x",
         {classes({"orvoUser", "person"})},
         65,
         "instantiation of abstract objectClass 'orvoUser' not allowed"},
        {"cn=x",
         {classes({"person", "orvoUser"})},
         65,
         "object class 'person' requires attribute 'sn'"},
        {"cn=x", {classes({"orvoMember", "orvoUser", "person"}), {"sn", {"x"}}}},
        with({"serialNumber", {"1"}}, 65, "attribute 'serialNumber' not allowed"),
        with({"2.5.4.5", {"1"}}, 65, "attribute 'serialNumber' not allowed"),
        with({"serialNumber;lang-de", {"1"}}, 65, "attribute 'serialNumber;lang-de' not allowed"),
        with({"name", {"1"}}, 65, "attribute 'name' not allowed"),
        {"cn=x",
         {classes({"organization"}), {"serialNumber", {"1"}}},
         65,
         "object class 'organization' requires attribute 'o'"},
        {"cn=x", {any_role, {"serialNumber", {"1"}}}},

        // The name.
        {"cn=x", {user}},
        {"cn=x", {user, {"cn", {"y"}}}},
        {"cn=X  x", {user, {"cn", {"x X"}}}},
        {"sn=x", {user, {"cn", {"y"}}}},
        {"cn=x+sn=y", {user}},
        {"c=GB", {user}, 65, "object class 'orvoPerson' requires attribute 'cn'"},
        {"nosuch=x", {user, {"nosuch", {"1"}}}, 34, "invalid DN"},
        {"1.2.3=x", {user}, 34, "invalid DN"},
        {"OrvoUserType=x", {user}, 34, "invalid DN"},
        {"cn=", {user}, 34, "invalid DN"},
        {"cn=x+cn=y", {user}, 34, "invalid DN"},
        {"c=x", {user}, 34, "invalid DN"},
        {"serialNumber=x", {user, {"cn", {"x"}}}, 65, "attribute 'serialNumber' not allowed"},
        {"creatorsName=cn\\=x", {user}, 64, "naming attribute 'creatorsName' is operational"},
        {"fax=x",
         {user},
         64,
         "naming attribute 'facsimileTelephoneNumber' has no equality matching rule"},
        {"OrvoGUID=x", {user, {"cn", {"y"}}, {"OrvoGUID", {"X"}}}},
        {"OrvoGUID=x",
         {user, {"cn", {"y"}}, {"OrvoGUID", {"z"}}},
         64,
         "value of single-valued naming attribute 'OrvoGUID' conflicts with value present in "
         "entry"},

        // What is looked at first.
        {"cn=x",
         {user, {"OrvoUserType", {"x"}}, {"nosuch", {"1"}}},
         21,
         "OrvoUserType: value #0 invalid per syntax"},
        {"cn=x",
         {user, {"nosuch", {"1"}}, {"OrvoUserType", {"x"}}},
         17,
         "nosuch: attribute type undefined"},
        {"cn=x",
         {user, {"creatorsName", {"cn=a"}}, {"OrvoRole", {"x"}}},
         21,
         "OrvoRole: value #0 invalid per syntax"},
        {"cn=x",
         {user, {"SURNAME", {"1"}}, {"sn", {"2"}}, {"creatorsName", {"cn=a"}}},
         19,
         "creatorsName: no user modification allowed"},
        {"cn=x",
         {user, {"SURNAME", {"1"}}, {"sn", {"2"}}, {"serialNumber", {"1"}}},
         20,
         "attribute 'sn' provided more than once"},
        {"OrvoGUID=x",
         {classes({"person"}), {"OrvoGUID", {"z"}}},
         64,
         "value of single-valued naming attribute 'OrvoGUID' conflicts with value present in "
         "entry"},
        {"OrvoGUID=x",
         {classes({"top"}), {"OrvoGUID", {"z"}}},
         65,
         "no structural object class provided"},
        {"fax=x", {classes({"top"})}, 65, "no structural object class provided"},
    };

    struct Values {
        Attribute holder;
        std::string attribute;
        std::vector<std::string> valid;
        std::vector<std::string> invalid;
    };
    const std::vector<Values> syntaxes = {
        {user,
         "OrvoRole",
         {"0", "-1", "99999999999999999999"},
         {"", "-0", "+1", "01", "-01", "00", "1.5", " 1", "1 ", "-", "one"}},
        {user,
         "CreditCardExpiryDate",
         {"20281231000000Z", "202812310000Z", "2028123100Z", "20281231000000.5Z",
          "20281231000000,5Z", "2028123100.5Z", "20281231000060Z", "20281231000000+0100",
          "20281231000000+01", "20281231000000.123456789Z", "20281231000000.5+0130"},
         {"", "2028", "20281231000000", "20281231000061Z", "20281231240000Z", "20281331000000Z",
          "20280230000000Z", "20270229000000Z", "20281231000000z", "20281231000000+2500",
          "20281231000000.Z", "20281231000000-0060", "20280100000000Z", "20281231006000Z",
          "2028-12-31", "2028123123595960Z"}},
        {user,
         "SpendLimit",
         {"0", "1234.5", "a b(c)", "a'b=?", " "},
         {"",
          "\xE2\x82\xAC"
          "5",
          "1;5", "a_b", "a@b", "a*b", "a\nb"}},
        {user, "c", {"GB", "gb", "G "}, {"", "G", "GBR", "1!"}},
        {user,
         "mail",
         {"a@b", "a b", ""},
         {"gr\xC3\xB6\xC3\x9F"
          "e"}},
        {user,
         "sn",
         {" ",
          "Gr\xC3\xB6\xC3\x9F"
          "e"},
         {"", "\xFF", "\xC0\x80"}},
        {user, "description", {std::string(1, '\0'), "\xEF\xBF\xBF"}, {"", "\x80"}},
        {user,
         "facsimileTelephoneNumber",
         {"+44 1", "x$fineResolution", "x$nosuch"},
         {"", "$fine", "x$", "a$$b", "a_b"}},
        {role, "telephoneNumber", {"+44 1-2", "-", " ", "a"}, {"", "a@b", "\xC3\xA9"}},
        {role, "destinationIndicator", {"a'()+,-./:? b="}, {"a$b", "a\"b", "\ta"}},
        {role,
         "postalAddress",
         {"", "a", "a$b", "$", "a\\24b", "a\\5cb", "a\\5Cb", "\xC3\xA9"},
         {"a\\", "a\\x", "a\\2"}},
        {role, "x121Address", {"12 3", " 1"}, {"", "a", "12-3"}},
        {role,
         "preferredDeliveryMethod",
         {"any", "ANY", "any$mhs", "any  $  any"},
         {"", "nosuch", "any $", " any"}},
        {role, "telexNumber", {"a$b$c", "a"}, {"", "$$", "\xC3\xA9$a$b"}},
        {role,
         "seeAlso",
         {"", "cn=a", "CN = a , o = b ", "cn=a\\,b", "cn=\\41", "2.5.4.3=a", "cn=a+sn=b", "fax=1",
          "OrvoRole=1", "cn=\\00"},
         {" ", "x", "cn=", "nosuch=a,o=Shop", "1.2.3.4=a", "cn=a,o", "cn=a\\", "#", "cn=#04",
          "cn=a+cn=b", "cn=a+sn=", "OrvoRole=x", "mail=\xC3\xB6,o=x", "cn=a,,o=b", ",cn=a",
          "objectClass=nosuch"}},
        {any_role, "x500UniqueIdentifier", {"'01'B", "''B"}, {"x", "'2'B"}},
        {any_role, "uniqueMember", {"cn=x", "cn=x#'0101'B", "#'0'B"}, {"x"}},
        {any_role, "pwdLockout", {"TRUE", "FALSE"}, {"", "true", "1"}},
        {any_role, "pwdAttribute", {"userPassword", "2.5.4.35"}, {"", "nosuch", "1.2.3"}},
        {any_role, "labeledURI", {"http://shop.example/ x"}, {""}},
        {any_role, "dc", {"shop", "a.b"}, {"\xC3\xA9"}},
    };
    for (const Values& row : syntaxes) {
        for (const std::string& one : row.valid)
            cases.push_back(value(row.holder, row.attribute, one, true));
        for (const std::string& one : row.invalid)
            cases.push_back(value(row.holder, row.attribute, one, false));
    }
    cases.push_back({"cn=x",
                     {role, {"teletexTerminalIdentifier", {"a"}}},
                     21,
                     "teletexTerminalIdentifier: no validator for syntax "
                     "1.3.6.1.4.1.1466.115.121.1.51"});
    return cases;
}

std::vector<ChangeCase> made_change_cases() {
    const auto add = [](std::string name, std::vector<std::string> values) {
        return Replacement{std::move(name), std::move(values), Change::add};
    };
    const auto remove = [](std::string name, std::vector<std::string> values = {}) {
        return Replacement{std::move(name), std::move(values), Change::remove};
    };
    const auto replace = [](std::string name, std::vector<std::string> values = {}) {
        return Replacement{std::move(name), std::move(values), Change::replace};
    };
    return {
        {{add("sn", {"c"})}},
        {{add("sn", {"a"})}, 20, "modify/add: sn: value #0 already exists"},
        {{add("SURNAME", {"c", "b", "a"})}, 20, "modify/add: sn: value #1 already exists"},
        {{add("sn", {"c", "d", "D"})}, 20, "sn: value #1 provided more than once"},
        {{add("sn", {})}, 2, "modify/add operation requires values"},
        {{add("sn", {""})}, 21, "sn: value #0 invalid per syntax"},
        {{add("nosuch", {""})}, 17, "nosuch: attribute type undefined"},
        {{add("sn;lang-de", {"a"})}},
        {{add("sn;lang-fr;lang-de", {"x"}), add("sn;lang-de;lang-fr", {"x"})},
         20,
         "modify/add: sn;lang-de;lang-fr: value #0 already exists"},
        {{add("OrvoGUID", {"h"})}, 19, "attribute 'OrvoGUID' cannot have multiple values"},
        {{add("OrvoGUID", {"h", "i"})}, 19, "OrvoGUID: multiple values provided"},
        {{add("CreditCardExpiryDate", {"20281231000000.0Z"})},
         20,
         "modify/add: CreditCardExpiryDate: value #0 already exists"},
        {{add("facsimileTelephoneNumber", {"2"})},
         18,
         "modify/add: facsimileTelephoneNumber: no equality matching rule"},
        {{add("objectClass", {"TOP"})}, 20, "modify/add: objectClass: value #0 already exists"},
        {{add("objectClass", {"orvoMember", "orvoUser"})}},
        {{add("objectClass", {"orvoProfile"})},
         65,
         "invalid structural object class chain (orvoPerson/orvoProfile)"},
        {{add("objectClass", {"simpleSecurityObject"})},
         65,
         "object class 'simpleSecurityObject' requires attribute 'userPassword'"},
        {{add("serialNumber", {"1"})}, 65, "attribute 'serialNumber' not allowed"},
        {{add("cn", {"y"})}},

        {{remove("sn")}},
        {{remove("sn", {"a"})}},
        {{remove("sn", {"a", "A"})}},
        {{remove("sn", {"a", "b"})}},
        {{remove("sn", {"a", "x"})}, 16, "modify/delete: sn: no such value"},
        {{remove("sn", {""})}, 21, "sn: value #0 invalid per syntax"},
        {{remove("SN"), remove("sn")}, 16, "modify/delete: sn: no such attribute"},
        {{remove("givenName")}, 16, "modify/delete: givenName: no such attribute"},
        {{remove("givenName", {"x"})}, 16, "modify/delete: givenName: no such attribute"},
        {{remove("sn;lang-de")}, 16, "modify/delete: sn;lang-de: no such attribute"},
        {{remove("nosuch")}, 17, "nosuch: attribute type undefined"},
        {{remove("OrvoRole", {"x"})}, 21, "OrvoRole: value #0 invalid per syntax"},
        {{remove("CreditCardExpiryDate", {"20281231010000+0100"})}},
        {{remove("facsimileTelephoneNumber", {"1"})},
         18,
         "modify/delete: facsimileTelephoneNumber: no equality matching rule"},
        {{remove("facsimileTelephoneNumber")}},
        {{remove("cn", {"x"})}, 64, "naming attribute 'cn' is not present in entry"},
        {{remove("objectClass", {"top"})}},
        {{remove("objectClass", {"orvoPerson"})}, 65, "no structural object class provided"},
        {{remove("objectClass")}, 65, "no objectClass attribute"},
        {{remove("objectClass", {"person"})}, 16, "modify/delete: objectClass: no such value"},

        {{replace("sn", {"x", "y"})}},
        {{replace("ORVOguid", {"G"})}},
        {{replace("sn")}},
        {{replace("givenName")}},
        {{replace("serialNumber")}},
        {{replace("nosuch")}, 17, "nosuch: attribute type undefined"},
        {{replace("OrvoRole", {"3", "4", "3"})}, 20, "OrvoRole: value #0 provided more than once"},
        {{replace("OrvoGUID", {"h", "i"})}, 19, "OrvoGUID: multiple values provided"},
        {{replace("cn", {"y", "X"})}},
        {{replace("cn", {"y"})}, 64, "value of naming attribute 'cn' is not present in entry"},
        {{replace("objectClass", {"orvoPerson"})}},
        {{replace("objectClass", {"orvoProfile", "top"})},
         69,
         "structural object class modification from 'orvoPerson' to 'orvoProfile' not allowed"},
        {{replace("objectClass", {"nosuch"})}, 21, "objectClass: value #0 invalid per syntax"},
        {{replace("objectClass")}, 65, "no objectClass attribute"},
        {{replace("creatorsName", {"cn=x"})}, 19, "creatorsName: no user modification allowed"},
        {{remove("modifyTimestamp")}, 19, "modifyTimestamp: no user modification allowed"},
        {{add("pwdReset", {"TRUE"})}},

        // Several, and what is looked at first.
        {{replace("sn", {"x"}), add("sn", {"y"}), remove("sn", {"x"})}},
        {{remove("sn", {"a"}), add("sn", {"a"})}},
        {{add("givenName", {"1"}), add("givenName", {"1"})},
         20,
         "modify/add: givenName: value #0 already exists"},
        {{replace("sn", {"x"}), replace("nosuch", {"1"})}, 17, "nosuch: attribute type undefined"},
        {{replace("creatorsName", {"cn=x"}), replace("OrvoRole", {"x"})},
         21,
         "OrvoRole: value #0 invalid per syntax"},
        {{replace("cn", {"y"}), replace("serialNumber", {"1"})},
         64,
         "value of naming attribute 'cn' is not present in entry"},
        {{replace("objectClass", {"orvoProfile"}), replace("cn", {"1"})},
         69,
         "structural object class modification from 'orvoPerson' to 'orvoProfile' not allowed"},
        {{add("OrvoGUID", {"h"}), replace("objectClass", {"orvoProfile"})},
         19,
         "attribute 'OrvoGUID' cannot have multiple values"},
        {{add("objectClass", {"simpleSecurityObject"}), add("serialNumber", {"1"})},
         65,
         "object class 'simpleSecurityObject' requires attribute 'userPassword'"},
    };
}

}  // namespace

const std::vector<AddCase>& add_cases() {
    static const std::vector<AddCase> cases = made_add_cases();
    return cases;
}

const std::vector<ChangeCase>& change_cases() {
    static const std::vector<ChangeCase> cases = made_change_cases();
    return cases;
}

EntryData sample_entry() {
    return {full_case_name("cn=x"),
            {user,
             {"cn", {"x"}},
             {"sn", {"A", "B"}},
             {"OrvoGUID", {"g"}},
             {"OrvoRole", {"1", "2"}},
             {"CreditCardExpiryDate", {"20281231000000Z"}},
             {"facsimileTelephoneNumber", {"1"}}}};
}

std::string full_case_name(const std::string& name) { return name + ",ou=Users,o=Shop"; }

}  // namespace orvo::directory
