#include "component/config/ServerInfo.h"

#include <dlfcn.h>

#include <new>

#include "tests/component/component_test.h"

namespace {
thread_local std::size_t too_large = 0;  // blocks of this size are refused; 0: none is
}

// The library's own, but for blocks that a test wants to have refused.
void* operator new(std::size_t size) {
    if (too_large != 0 && size >= too_large) throw std::bad_alloc();
    static const auto real = reinterpret_cast<void* (*)(std::size_t)>(dlsym(RTLD_NEXT, "_Znwm"));
    return real(size);
}

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// What is given, what comes out, and what the caller's variables hold afterwards.
struct PathCase {
    const char* description;
    TextView host, container, object;
    TextView path;
    TextView host_after, object_after;
};

const PathCase path_cases[] = {
    {"scheme and slash are dropped, a bare object gets the user naming attribute",
     u"LDAP://dir01:389/", u"ou=Users,o=Shop", u"jsmith",
     u"LDAP://dir01:389/un=jsmith,ou=Users,o=Shop", u"dir01:389", u"un=jsmith"},
    {"a plain host stays as it is", u"dir01", u"o=Shop", u"cn=jsmith",
     u"LDAP://dir01/cn=jsmith,o=Shop", u"dir01", u"cn=jsmith"},
    {"only the first // is cut and only one / dropped", u"LDAP://dir01//", u"o=Shop", u"",
     u"LDAP://dir01//o=Shop", u"dir01/", u""},
    {"everything before the first // goes", u"a/b//c//d", u"o=Shop", u"", u"LDAP://c//d/o=Shop",
     u"c//d", u""},
    {"a // at the end leaves nothing", u"dir01//", u"o=Shop", u"", u"LDAP:///o=Shop", u"", u""},
    {"a scheme alone leaves nothing", u"LDAP://", u"o=Shop", u"", u"LDAP:///o=Shop", u"", u""},
    {"a host of one slash is dropped", u"/", u"o=Shop", u"", u"LDAP:///o=Shop", u"", u""},
    {"an empty host stays empty", u"", u"o=Shop", u"", u"LDAP:///o=Shop", u"", u""},
    {"one slash at the end is dropped", u"dir01/", u"o=Shop", u"", u"LDAP://dir01/o=Shop", u"dir01",
     u""},
    {"any scheme is dropped", u"ldaps://dir01:636", u"o=Shop", u"", u"LDAP://dir01:636/o=Shop",
     u"dir01:636", u""},
    {"a container from the top down is turned round", u"dir01", u"o=Shop/ou=Users/ou=Staff", u"",
     u"LDAP://dir01/ou=Staff,ou=Users,o=Shop", u"dir01", u""},
    {"pieces between slashes keep their commas", u"dir01", u"o=Shop/ou=Users,ou=Staff", u"x=1",
     u"LDAP://dir01/x=1,ou=Users,ou=Staff,o=Shop", u"dir01", u"x=1"},
    {"a slash at the end gives an empty piece in front", u"dir01", u"o=Shop/ou=Users/", u"",
     u"LDAP://dir01/,ou=Users,o=Shop", u"dir01", u""},
    {"a slash alone gives two empty pieces", u"dir01", u"/", u"", u"LDAP://dir01/,", u"dir01", u""},
    {"a container of one part", u"dir01", u"o=Shop", u"jsmith", u"LDAP://dir01/un=jsmith,o=Shop",
     u"dir01", u"un=jsmith"},
    {"an empty container", u"dir01", u"", u"", u"LDAP://dir01/", u"dir01", u""},
    {"an empty container and an object", u"dir01", u"", u"jsmith", u"LDAP://dir01/un=jsmith,",
     u"dir01", u"un=jsmith"},
    {"nothing is trimmed", u" dir01 ", u" ou=Users , o=Shop ", u" jsmith ",
     u"LDAP:// dir01 /un= jsmith , ou=Users , o=Shop ", u" dir01 ", u"un= jsmith "},
    {"nothing is escaped", u"dir01", u"o=Shop", u"Smith, John+\"x\"/y",
     u"LDAP://dir01/un=Smith, John+\"x\"/y,o=Shop", u"dir01", u"un=Smith, John+\"x\"/y"},
    {"an = anywhere in the object leaves it as it is", u"dir01", u"o=Shop", u"j=smith",
     u"LDAP://dir01/j=smith,o=Shop", u"dir01", u"j=smith"},
    {"commas at the ends of a container stay", u"dir01", u",o=Shop,", u"", u"LDAP://dir01/,o=Shop,",
     u"dir01", u""},
};

class Paths : public ComponentTest {
protected:
    // A new object with the shop's settings, behind each door in turn.
    template <class Body>
    void through_every_door(Body body) {
        through_doors_to<ServerInfo>(body, [this](Behind<ServerInfo>& info) {
            Ref<Configuration> configuration = configuration_.make_one();
            info.call<&ServerInfo::LoadConfigFile>(configuration);
        });
    }
};

TEST_FRESH(Paths, MakeLDAPStringBuildsADirectoryUrlAndChangesHostAndObject) {
    through_every_door([](Behind<ServerInfo>& info) {
        for (const PathCase& row : path_cases) {
            SCOPED_TRACE(row.description);
            Text host(row.host), container(row.container), object(row.object);
            EXPECT_EQ(to_utf8(info.call<&ServerInfo::makeLDAPString>(host, container, object)),
                      to_utf8(row.path));
            EXPECT_EQ(to_utf8(host), to_utf8(row.host_after));
            EXPECT_EQ(to_utf8(object), to_utf8(row.object_after));
            EXPECT_EQ(to_utf8(container), to_utf8(row.container)) << "the container is not changed";
        }
    });
}

// Nothing but a lack of memory makes either of them fail.
TEST_FRESH(Paths, AFailureIsLoggedAndRaisedUnderTheOperationsName) {
    ServerInfo info;
    Text name(100'000, u'x'), container = u"o=Shop", object = u"jsmith";
    const auto without_memory = [&](auto body) {
        return raised_by([&] {
            too_large = 2 * name.size();
            try {
                body();
            } catch (...) {
                too_large = 0;
                throw;
            }
            too_large = 0;
        });
    };
    expect_failure(without_memory([&] { info.makeLDAPString(name, container, object); }), 7,
                   u"OrvoMembership",
                   block("7", "OrvoMembership.ServerInfo.makeLDAPString", "Out of memory"));
    expect_failure(without_memory([&] { info.FullUserPath(name); }), 7, u"OrvoMembership",
                   block("7", "OrvoMembership.ServerInfo.FullUserPath", "Out of memory"));
    EXPECT_THAT(log_.take_sources(), ElementsAre("OrvoMembership", "OrvoMembership"));
}

TEST_FRESH(Paths, MakeLDAPStringGoesWithoutANamingAttributeOnAFreshObject) {
    ServerInfo info;
    Text host = u"dir01", container = u"o=Shop", object = u"jsmith";
    EXPECT_EQ(info.makeLDAPString(host, container, object), u"LDAP://dir01/=jsmith,o=Shop");
    EXPECT_THAT(log_.take(), IsEmpty());
}

struct UserCase {
    const char* description;
    TextView user_container;  // as configured; the root is o=Shop
    TextView user;
    TextView path;
};

const UserCase user_cases[] = {
    {"a bare name gets the user naming attribute", u"ou=Users", u"jsmith",
     u"un=jsmith,ou=Users,o=Shop"},
    {"a named one stays as it is", u"ou=Users", u"cn=jsmith", u"cn=jsmith,ou=Users,o=Shop"},
    {"the empty text gives the container alone", u"ou=Users", u"", u"ou=Users,o=Shop"},
    {"a full path gets the container once more", u"ou=Users", u"cn=jsmith,ou=Users,o=Shop",
     u"cn=jsmith,ou=Users,o=Shop,ou=Users,o=Shop"},
    {"a container from the top down is turned round with the root in its last piece",
     u"ou=Users/ou=Staff", u"jsmith", u"un=jsmith,ou=Staff,o=Shop,ou=Users"},
    {"nothing is trimmed or escaped", u"ou=Users", u" Smith, John ",
     u"un= Smith, John ,ou=Users,o=Shop"},
    {"a name with a slash is not taken apart", u"ou=Users", u"a/b", u"un=a/b,ou=Users,o=Shop"},
};

TEST_FRESH(Paths, FullUserPathIsADistinguishedNameBelowTheUserContainer) {
    for (const UserCase& row : user_cases) {
        SCOPED_TRACE(row.description);
        membership()[u"UserContainer"] = row.user_container;
        through_every_door([&](Behind<ServerInfo>& info) {
            Text user(row.user);
            EXPECT_EQ(to_utf8(info.call<&ServerInfo::FullUserPath>(user)), to_utf8(row.path));
            EXPECT_EQ(to_utf8(user), to_utf8(row.user)) << "the caller's variable is not changed";
        });
    }
}

TEST_FRESH(Paths, FullUserPathEndsInACommaWithoutARoot) {
    membership().erase(u"LDAPRoot");
    membership()[u"UserNamingAttribute"] = u"cn";
    through_every_door([](Behind<ServerInfo>& info) {
        Text user = u"jsmith", nobody;
        EXPECT_EQ(info.call<&ServerInfo::FullUserPath>(user), u"cn=jsmith,");
        EXPECT_EQ(info.call<&ServerInfo::FullUserPath>(nobody), u"");
    });
}

TEST_FRESH(Paths, FullUserPathOfAFreshObjectRaisesNothing) {
    ServerInfo info;
    Text user = u"jsmith";
    EXPECT_EQ(info.FullUserPath(user), u"=jsmith,");
    EXPECT_THAT(log_.take(), IsEmpty());
}

}  // namespace
}  // namespace orvo
