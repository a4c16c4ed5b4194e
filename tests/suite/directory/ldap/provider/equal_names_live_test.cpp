// What this process knows of an entry is fresh whatever name the entry is written under. The server
// of each test says first which names it takes for one entry.

#include "suite/directory/ldap/memory/entry_cache.h"
#include "tests/suite/directory/ldap/pool/pool_test.h"

namespace orvo::directory::ldap {
namespace {

constexpr std::int32_t wrong_credentials = static_cast<std::int32_t>(0x8007052E);

// A relative name, another of the same entry, and the value that names the entry.
struct Spellings {
    const char* one;
    const char* other;
    const char* attribute;
    const char* value;
};

const Spellings spellings[] = {
    {"cn=anna", "CN = ANNA ", "cn", "anna"},
    {"cn=anna", "commonName=Anna", "cn", "anna"},
    {"cn=anna", "cn=\\61nna", "cn", "anna"},
    {"cn=anna k", "cn=  Anna   K", "cn", "anna k"},
    {"cn=anna k", "cn=anna\u00A0k", "cn", "anna k"},
    {"cn=z\u00E9l\u00E9", "cn=ze\u0301le\u0301", "cn", "z\u00E9l\u00E9"},
    {"cn=ze\u0301le\u0301", "cn=Z\u00C9L\u00C9", "cn", "z\u00E9l\u00E9"},
    {"cn=abc", "cn=\uFF21\uFF22\uFF23", "cn", "abc"},
    {"cn=of\uFB01ce", "cn=OFFICE", "cn", "of\uFB01ce"},
    {"cn=\u0130x", "cn=ix", "cn", "\u0130x"},
    {"cn=\u0535\u0562", "cn=\u0565\u0562", "cn", "\u0535\u0562"},
    {"sn=Smit", "surname=Smit", "sn", "Smit"},
    {"surname=Smit", "2.5.4.4=SMIT", "sn", "Smit"},
    {"givenName=Jo", "gn=jo", "givenName", "Jo"},
    {"mail=jo@shop.example", "rfc822Mailbox=JO@shop.example", "mail", "jo@shop.example"},
    {"CostCenter=Jo", "costcenter=jo", "CostCenter", "Jo"},
    {"telephoneNumber=31 12-34", "telephoneNumber=311234", "telephoneNumber", "31 12-34"},
};

class EqualNamesTest : public PoolTest {
protected:
    EqualNamesTest() { use_cache(100); }

    void use_cache(std::int32_t entries) {
        Variant names = Values{u"Entries"}, values = Values{entries};
        LdapEntry({}, client_).InitializeCache(names, values);
    }

    static std::string below(const std::string& relative) { return relative + ",ou=Users,o=Shop"; }
    static User user(const char* relative, const char* password = "first") {
        return {below(relative), password};
    }

    void add(const Spellings& row) {
        std::vector<std::pair<std::string, std::vector<std::string>>> attributes = {
            {"objectClass", {"orvoPerson", "extensibleObject"}},
            {"Position", {"Clerk"}},
            {"userPassword", {"first"}},
            {row.attribute, {row.value}}};
        if (row.attribute != std::string("cn")) attributes.push_back({"cn", {"somebody"}});
        ASSERT_EQ(probe_.add(below(row.one), attributes), 0) << row.one;
        ASSERT_EQ(probe_.search_result(below(row.other), "(objectClass=*)"), 0) << row.other;
    }

    template <class Test>
    void for_each_spelling(Test test) {
        for (const Spellings& row : spellings) {
            SCOPED_TRACE(std::string(row.one) + " and " + row.other);
            add(row);
            test(row);
            ASSERT_EQ(probe_.remove(below(row.one)), 0);
            forget_refusals();
        }
    }

    void bind_entry(LdapEntry& entry, const char* relative, const User& as) {
        bind(entry, as, from_utf8(relative), Values{u"Position"});
    }
    // From the server: of a list no more than one reading comes with the bind.
    static void expect_answers(LdapEntry& entry) {
        const Variant first = values(entry, u"objectClass");
        EXPECT_EQ(values(entry, u"objectClass"), first);
        EXPECT_NE(first, Variant(Values{Variant()}));
    }
};

TEST_F(EqualNamesTest, AChangedPasswordCountsAtOnceForTheUserOfTheOtherName) {
    for_each_spelling([&](const Spellings& row) {
        LdapEntry administrator({}, client_);
        bind_entry(administrator, row.other, service());
        ASSERT_EQ(bind_result(user(row.one)), 0);
        set(administrator, u"userPassword", u"second");
        EXPECT_EQ(bind_result(user(row.one)), wrong_credentials);
        EXPECT_EQ(bind_result(user(row.one, "second")), 0);
    });
}

TEST_F(EqualNamesTest, WhatWasCachedIsFreshAtOnceUnderTheOtherName) {
    for_each_spelling([&](const Spellings& row) {
        LdapEntry reader({}, client_), writer({}, client_);
        bind_entry(reader, row.one, service());
        bind_entry(writer, row.other, service());
        EXPECT_EQ(values(reader, u"Position"), Variant(Values{u"Clerk"}));
        set(writer, u"Position", u"Manager");
        EXPECT_EQ(values(reader, u"Position"), Variant(Values{u"Manager"}));
        set(reader, u"Position", u"Clerk");
        EXPECT_EQ(values(writer, u"Position"), Variant(Values{u"Clerk"}));
    });
}

TEST_F(EqualNamesTest, WhatCameWithABindIsFreshAtOnceUnderTheOtherName) {
    use_cache(0);
    for_each_spelling([&](const Spellings& row) {
        LdapEntry reader({}, client_), writer({}, client_);
        bind_entry(writer, row.other, service());
        bind_entry(reader, row.one, service());
        set(writer, u"Position", u"Manager");
        EXPECT_EQ(values(reader, u"Position"), Variant(Values{u"Manager"}));
    });
}

TEST_F(EqualNamesTest, AUserDeletedUnderTheOtherNameIsRefusedAtOnce) {
    for (const Spellings& row : spellings) {
        SCOPED_TRACE(row.other);
        add(row);
        LdapEntry users({}, client_);
        bind(users, service(), u"");
        ASSERT_EQ(bind_result(user(row.one)), 0);
        Text type = u"orvoPerson", name = from_utf8(below(row.other));
        users.DeleteChild(type, name);
        EXPECT_EQ(bind_result(user(row.one)), wrong_credentials);
        forget_refusals();
    }
}

TEST_F(EqualNamesTest, WhoChangesTheOwnPasswordUnderAnEqualNameGoesOn) {
    const Spellings row{"cn=z\u00E9l\u00E9", "commonName=ZE\u0301LE\u0301", "cn", "z\u00E9l\u00E9"};
    add(row);
    use_cache(0);
    LdapEntry own({}, client_), other({}, client_);
    bind_entry(own, row.other, user(row.one));
    bind_entry(other, "cn=djansen", user(row.one));
    set(own, u"userPassword", u"second");
    expect_answers(own);
    expect_answers(other);
    EXPECT_EQ(bind_result(user(row.one)), wrong_credentials);
    EXPECT_EQ(bind_result(user(row.one, "second")), 0);
}

TEST_F(EqualNamesTest, WhoChangesTheOwnPasswordUnderANameThatIsNotKnownToBeEqualIsAskedAnew) {
    const Spellings row{"telephoneNumber=31 12-34", "telephoneNumber=311234", "telephoneNumber",
                        "31 12-34"};
    add(row);
    LdapEntry own({}, client_);
    bind_entry(own, row.other, user(row.one));
    set(own, u"userPassword", u"second");
    EXPECT_EQ(failure_of([&] { clear(own, u"Position"); }).number, wrong_credentials);
    EXPECT_EQ(bind_result(user(row.one)), wrong_credentials);
    EXPECT_EQ(bind_result(user(row.one, "second")), 0);
}

// Their names have one loose key.
TEST_F(EqualNamesTest, UsersWhomTheServerTellsApartKeepTheirOwnPasswords) {
    const Spellings strasse{"cn=strasse", "cn=STRASSE", "cn", "strasse"};
    const Spellings eszett{"cn=stra\u00DFe", "cn=Stra\u00DFe", "cn", "stra\u00DFe"};
    add(strasse);
    add(eszett);
    LdapEntry own({}, client_), theirs({}, client_);
    use_cache(0);
    bind_entry(own, strasse.one, user(strasse.one));
    bind_entry(theirs, "cn=djansen", user(eszett.one));
    set(own, u"userPassword", u"second");
    expect_answers(theirs);
    expect_answers(own);
    EXPECT_EQ(bind_result(user(eszett.one)), 0);
    EXPECT_EQ(bind_result(user(eszett.one, "second")), wrong_credentials);
    EXPECT_EQ(bind_result(user(strasse.one, "second")), 0);
    EXPECT_EQ(bind_result(user(strasse.one)), wrong_credentials);
}

TEST_F(EqualNamesTest, AWriteUnderANameThatIsReadByTheServerAloneIsSeenAtOnce) {
    LdapEntry reader({}, client_), writer({}, client_);
    bind_entry(reader, "cn=djansen", service());
    EXPECT_EQ(values(reader, u"sn"), Variant(Values{u"Jansen"}));
    Text server = from_utf8(server_.server()), container, name = u"cn=djansen;ou=Users;o=Shop";
    Text account = from_utf8(service().name);
    Secret password = Secret::of_bytes(service().password);
    Variant nothing = Values{};
    writer.Bind(server, name, container, account, password, nothing);
    set(writer, u"sn", u"Changed");
    EXPECT_EQ(values(reader, u"sn"), Variant(Values{u"Changed"}));
}

}  // namespace
}  // namespace orvo::directory::ldap
