#include "component/config/ServerInfo.h"

#include "tests/component/component_test.h"

namespace orvo {
namespace {

using testing::IsEmpty;

// One getter as a row: its name, how it is called, and what the shop's settings make it answer.
struct Getter {
    const char* name;
    Variant (*call)(Behind<ServerInfo>&);
    Variant loaded;
};

template <auto M>
Variant called(Behind<ServerInfo>& info) {
    return info.call<M>();
}

const Getter text_getters[] = {
    {"GetMemScriptUser", called<&ServerInfo::GetMemScriptUser>, u"cn=script,o=Shop"},
    {"GetMemScriptCode", called<&ServerInfo::GetMemScriptCode>, u"script-code"},
    {"GetServerName", called<&ServerInfo::GetServerName>, u"dir01:389"},
    {"GetPMMImplementation", called<&ServerInfo::GetPMMImplementation>, u"Test.Directory"},
    {"GetProfileContainer", called<&ServerInfo::GetProfileContainer>, u"ou=Profiles,o=Shop"},
    {"GetUserContainer", called<&ServerInfo::GetUserContainer>, u"ou=Users,o=Shop"},
    {"GetAccountContainer", called<&ServerInfo::GetAccountContainer>, u"ou=Accounts,o=Shop"},
    {"GetCookieName", called<&ServerInfo::GetCookieName>, u"ShopLogin"},
    {"GetProfileClass", called<&ServerInfo::GetProfileClass>, u"shopProfile"},
    {"GetAccountClass", called<&ServerInfo::GetAccountClass>, u"shopAccount"},
    {"GetUserNamingAttribute", called<&ServerInfo::GetUserNamingAttribute>, u"un"},
    {"GetProfileNamingAttribute", called<&ServerInfo::GetProfileNamingAttribute>, u"pn"},
    {"GetAccountNamingAttribute", called<&ServerInfo::GetAccountNamingAttribute>, u"an"},
    {"GetConfigFileName", called<&ServerInfo::GetConfigFileName>, u"directory.ini"},
};
const Getter list_getters[] = {
    {"GetUserClass", called<&ServerInfo::GetUserClass>, Values{u"top", u"person"}},
    {"GetUserMandatoryAttributes", called<&ServerInfo::GetUserMandatoryAttributes>,
     Values{u"sn", u"mail"}},
};

class ServerInfoGetters : public ComponentTest {
protected:
    template <class Body>
    void through_every_door(Body body) {
        through_doors_to<ServerInfo>(body);
    }
    void load(Behind<ServerInfo>& info) {
        Ref<Configuration> configuration = configuration_.make_one();
        info.call<&ServerInfo::LoadConfigFile>(configuration);
    }
};

TEST_FRESH(ServerInfoGetters, OfAFreshObjectAnswerEmptyTextsAndRaiseNothing) {
    through_every_door([this](Behind<ServerInfo>& info) {
        for (const Getter& getter : text_getters)
            EXPECT_EQ(getter.call(info), Variant(u"")) << getter.name;
        EXPECT_THAT(log_.take(), IsEmpty());
    });
}

TEST_FRESH(ServerInfoGetters, OfListsOfAFreshObjectAnswerEmpty) {
    through_every_door([this](Behind<ServerInfo>& info) {
        for (const Getter& getter : list_getters)
            EXPECT_EQ(getter.call(info), Variant()) << getter.name;
        EXPECT_THAT(log_.take(), IsEmpty());
    });
}

TEST_FRESH(ServerInfoGetters, AnswerTheConfiguredValues) {
    through_every_door([this](Behind<ServerInfo>& info) {
        load(info);
        for (const Getter& getter : text_getters)
            EXPECT_EQ(getter.call(info), getter.loaded) << getter.name;
        for (const Getter& getter : list_getters)
            EXPECT_EQ(getter.call(info), getter.loaded) << getter.name;
    });
}

TEST_FRESH(ServerInfoGetters, AnswerCopies) {
    through_every_door([this](Behind<ServerInfo>& info) {
        load(info);
        Values classes = info.call<&ServerInfo::GetUserClass>().to<Values>();
        classes[0] = u"changed";
        EXPECT_EQ(shown(info.call<&ServerInfo::GetUserClass>()), "[top, person]");
    });
}

TEST_FRESH(ServerInfoGetters, AnswerTheServerButNoContainerWithoutARoot) {
    membership().erase(u"LDAPRoot");
    through_every_door([this](Behind<ServerInfo>& info) {
        load(info);
        EXPECT_EQ(info.call<&ServerInfo::GetServerName>(), Variant(u"dir01:389"));
        EXPECT_EQ(info.call<&ServerInfo::GetUserContainer>(), Variant(u""));
        EXPECT_EQ(info.call<&ServerInfo::GetProfileContainer>(), Variant(u""));
        EXPECT_EQ(info.call<&ServerInfo::GetAccountContainer>(), Variant(u""));
        EXPECT_EQ(info.call<&ServerInfo::GetMemScriptUser>(), Variant(u""));
    });
}

TEST_FRESH(ServerInfoGetters, AnswerTheRootBehindACommaWhereAContainerIsNotConfigured) {
    membership().erase(u"UserContainer");
    through_every_door([this](Behind<ServerInfo>& info) {
        load(info);
        EXPECT_EQ(info.call<&ServerInfo::GetUserContainer>(), Variant(u",o=Shop"));
    });
}

TEST_FRESH(ServerInfoGetters, AnswerValuesThatAreNeitherTrimmedNorChecked) {
    membership()[u"LDAPServer"] = u"  dir01 ";
    membership()[u"UserClass"] = u" top , person,,";
    through_every_door([this](Behind<ServerInfo>& info) {
        load(info);
        EXPECT_EQ(info.call<&ServerInfo::GetServerName>(), Variant(u"  dir01 "));
        EXPECT_EQ(info.call<&ServerInfo::GetUserClass>(),
                  Variant(Values{u" top ", u" person", u"", u""}));
    });
}

TEST_FRESH(ServerInfoGetters, AnswerNumbersOfTheConfigurationAsTexts) {
    membership()[u"CookieName"] = 42;
    through_every_door([this](Behind<ServerInfo>& info) {
        load(info);
        EXPECT_EQ(info.call<&ServerInfo::GetCookieName>(), Variant(u"42"));
    });
}

TEST_FRESH(ServerInfoGetters, OfOneObjectKnowNothingOfAnother) {
    through_every_door([this](Behind<ServerInfo>& info) {
        load(info);
        Behind<ServerInfo> other(Door::direct);
        EXPECT_EQ(other.call<&ServerInfo::GetServerName>(), Variant(u""));
    });
}

}  // namespace
}  // namespace orvo
