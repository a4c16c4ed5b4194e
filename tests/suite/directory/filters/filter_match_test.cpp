#include "suite/directory/filters/filter_match.h"

#include <gtest/gtest.h>

#include <map>
#include <ostream>

#include "tests/suite/directory/filters/plain_entry.h"

namespace orvo::directory {

std::ostream& operator<<(std::ostream& out, Truth truth) {
    return out << (truth == Truth::yes ? "yes" : truth == Truth::no ? "no" : "undefined");
}

namespace {

std::optional<AttributeMatching> matching_of(std::string_view attribute) {
    static const std::map<std::string, AttributeMatching> known = {
        {"cn", {}},
        {"sn", {}},
        {"mail", {}},
        {"ou", {}},
        {"o", {}},
        {"password", {MatchingRule::case_exact}},
        {"guid", {MatchingRule::case_ignore, false, false}},
        {"name", {.ordered = false, .listed = true}},
        {"orvousertype", {MatchingRule::integer}},
        {"orvorole", {MatchingRule::integer}},
        {"locked", {MatchingRule::boolean}},
        {"expires", {MatchingRule::time}},
        {"phone", {MatchingRule::telephone}},
        {"manager", {MatchingRule::distinguished_name}},
        {"photo", {MatchingRule::octets}},
    };
    const auto found = known.find(ascii::lower(attribute));
    if (found == known.end()) return std::nullopt;
    return found->second;
}

const PlainEntry john({{"cn", {"John  Smith", "Smith, John"}},
                       {"sn", {"Smith"}},
                       {"password", {"Secret"}},
                       {"guid", {"ABC"}},
                       {"name", {"John Smith"}},
                       {"OrvoUserType", {"4"}},
                       {"OrvoRole", {"2", "10", "broken"}},
                       {"locked", {"FALSE"}},
                       {"expires", {"20240229123000Z"}},
                       {"phone", {"+49 30-1234"}},
                       {"manager", {"cn=Boss,o=Shop"}},
                       {"photo", {std::string("\xFF\x00(", 3)}}},
                      {{"cn", {"John Smith"}}, {"ou", {"Users"}}, {"o", {"Shop"}}});

struct Row {
    const char16_t* filter;
    Truth truth;
};

constexpr Truth yes = Truth::yes;
constexpr Truth no = Truth::no;
constexpr Truth undefined = Truth::undefined;

constexpr Row rows[] = {
    {u"(cn=john smith)", yes},
    {u"(CN=SMITH,   JOHN)", yes},
    {u"(cn=\\20john smith\\20)", yes},
    {u"(cn=johnsmith)", no},
    {u"(cn=john)", no},
    {u"(cn=)", no},
    {u"(cn=*)", yes},
    {u"(mail=*)", no},
    {u"(mail=a)", no},
    {u"(mail>=a)", no},
    {u"(!mail=*)", yes},
    {u"(! mail=a)", yes},

    {u"(cn=john*)", yes},
    {u"(cn=john *)", yes},
    {u"(cn=*smith)", yes},
    {u"(cn=j*n*th)", yes},
    {u"(cn=john*smith)", yes},
    {u"(cn=john *smith)", yes},
    {u"(cn=john * smith)", yes},
    {u"(cn=*, *)", yes},
    {u"(cn=*ohn s*)", yes},
    {u"(cn=*john*john*)", no},
    {u"(cn=smith*smith)", no},
    {u"(sn=smi*ith)", no},
    {u"(sn=sm*ith)", yes},
    {u"(sn=*m*m*)", no},
    {u"(sn=*x)", no},

    {u"(sn>=smith)", yes},
    {u"(sn>=SMITH!)", no},
    {u"(sn>=smit!)", yes},
    {u"(sn<=smith)", yes},
    {u"(sn<=Smit)", no},
    {u"(sn~=smith)", yes},
    {u"(password=Secret)", yes},
    {u"(password=secret)", no},
    {u"(password=S*T)", no},
    {u"(guid=abc)", yes},
    {u"(guid>=a)", undefined},
    {u"(guid=a*)", undefined},

    {u"(name>=john smith)", yes},
    {u"(name>=john!)", yes},
    {u"(name>=john smith!)", no},
    {u"(name<=john!)", no},
    {u"(name<=JOHN SMITH)", yes},
    {u"(name=john  smith)", yes},

    {u"(OrvoUserType=4)", yes},
    {u"(orvousertype = 004)", yes},
    {u"(!OrvoUserType = 0)", yes},
    {u"(OrvoUserType>=-1)", yes},
    {u"(OrvoUserType<=10)", yes},
    {u"(OrvoUserType>=10)", no},
    {u"(OrvoRole=10)", yes},
    {u"(OrvoRole>=11)", no},
    {u"(OrvoRole=broken)", undefined},
    {u"(OrvoRole=1*)", undefined},
    {u"(OrvoUserType=)", undefined},
    {u"(locked=false)", yes},
    {u"(locked=TRUE)", no},
    {u"(locked=0)", undefined},
    {u"(locked>=FALSE)", undefined},
    {u"(expires=20240229133000+0100)", yes},
    {u"(expires>=20240229123001Z)", no},
    {u"(expires<=20240229123000.001Z)", yes},
    {u"(expires>=soon)", undefined},
    {u"(phone=+49301234)", yes},
    {u"(phone=*30 12*)", yes},
    {u"(phone>=0)", undefined},
    {u"(manager=CN=boss, O=shop)", yes},
    {u"(manager=boss)", undefined},
    {u"(photo=\\ff\\00\\28)", yes},
    {u"(photo=\\fe)", no},
    {u"(cn=\\ff)", undefined},
    {u"(cn=*\\ff*)", undefined},

    {u"(shoeSize=*)", undefined},
    {u"(shoeSize=12)", undefined},
    {u"(!shoeSize=12)", undefined},
    {u"(&(cn=*)(shoeSize=12))", undefined},
    {u"(&(mail=*)(shoeSize=12))", no},
    {u"(&(shoeSize=12)(mail=*))", no},
    {u"(|(cn=*)(shoeSize=12))", yes},
    {u"(|(shoeSize=12)(cn=*))", yes},
    {u"(|(mail=*)(shoeSize=12))", undefined},
    {u"(!(&(mail=*)(shoeSize=12)))", yes},
    {u"(&)", yes},
    {u"(|)", no},
    {u"(&(cn=*)(sn=smith)(!(|(sn=a)(sn=b))))", yes},
    {u"(&(cn=*)(sn=a))", no},

    {u"(cn:caseExactMatch:=john smith)", no},
    {u"(cn:caseExactMatch:=John Smith)", yes},
    {u"(password:2.5.13.2:=SECRET)", yes},
    {u"(cn:=john smith)", yes},
    {u"(cn:integerMatch:=1)", undefined},
    {u"(cn:noSuchMatch:=1)", undefined},
    {u"(shoeSize:integerMatch:=1)", undefined},
    {u"(ou:=users)", no},
    {u"(ou:dn:=users)", yes},
    {u"(:caseIgnoreMatch:=smith)", yes},
    {u"(:caseIgnoreMatch:=users)", no},
    {u"(:dn:caseIgnoreMatch:=users)", yes},
    {u"(:integerMatch:=10)", yes},
    {u"(:integerMatch:=11)", no},
    {u"(:noSuchMatch:=11)", undefined},
};

Truth evaluate(TextView filter, const MatchedEntry& entry) {
    return FilterMatcher(Filter::parse(filter), matching_of).evaluate(entry);
}

TEST(AFilterEvaluatedAgainstAnEntry, IsTrueFalseOrUndefined) {
    for (const Row& row : rows)
        EXPECT_EQ(evaluate(row.filter, john), row.truth) << to_utf8(row.filter);
}

TEST(AFilterEvaluatedAgainstAnEntry, MatchesOnlyWhereItIsTrue) {
    const auto matches = [](TextView filter) {
        return FilterMatcher(Filter::parse(filter), matching_of).matches(john);
    };
    EXPECT_TRUE(matches(u"(cn=*)"));
    EXPECT_FALSE(matches(u"(mail=*)"));
    EXPECT_FALSE(matches(u"(shoeSize=*)"));
    EXPECT_FALSE(matches(u"(!shoeSize=*)"));
}

TEST(AFilterMatcher, OutlivesItsFilterAndServesManyEntries) {
    const auto matcher = [] {
        const Filter filter = Filter::parse(u"(&(cn>=b)(!sn=x*))");
        return FilterMatcher(filter, matching_of);
    }();
    const auto evaluated = [&](PlainEntry::Attributes attributes) {
        return matcher.evaluate(PlainEntry(std::move(attributes)));
    };
    EXPECT_EQ(evaluated({{"cn", {"a"}}}), Truth::no);
    EXPECT_EQ(evaluated({{"CN", {"B"}}}), Truth::yes);
    EXPECT_EQ(evaluated({{"cn", {"c"}}, {"sn", {"Xavier"}}}), Truth::no);
}

}  // namespace
}  // namespace orvo::directory
