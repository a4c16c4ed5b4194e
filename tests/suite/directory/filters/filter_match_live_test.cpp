#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "suite/directory/filters/filter_match.h"
#include "tests/suite/directory/filters/plain_entry.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo::directory {
namespace {

constexpr const char* base = "o=Shop";

// As the server's schema has them: cn and sn have no order there, OrvoGUID has equality only.
const std::map<std::string, AttributeMatching> known = {
    {"objectclass", {MatchingRule::case_ignore, false, false}},
    {"cn", {MatchingRule::case_ignore, false, true}},
    {"sn", {MatchingRule::case_ignore, false, true}},
    {"givenname", {MatchingRule::case_ignore, false, true}},
    {"mail", {MatchingRule::case_ignore, false, true}},
    {"orvoguid", {MatchingRule::case_ignore, false, false}},
    {"profilecn", {MatchingRule::case_ignore}},
    {"orvousertype", {MatchingRule::integer}},
    {"orvorole", {MatchingRule::integer}},
    {"orvoapps", {MatchingRule::integer}},
    {"businesspartnerid", {MatchingRule::integer}},
    {"creditcardexpirydate", {MatchingRule::time}},
    {"outofofficeon", {MatchingRule::integer}},
};

std::optional<AttributeMatching> matching_of(std::string_view attribute) {
    const auto found = known.find(ascii::lower(attribute));
    if (found == known.end()) return std::nullopt;
    return found->second;
}

constexpr const char16_t* filters[] = {
    u"(& (objectClass=orvoPerson)(OrvoUserType=*)(! mail=*))",
    u"(& (objectClass=ORVOPERSON)(|(orvousertype = 4)(orvousertype = 33)))",
    u"(& (objectClass=orvoPerson)(orvoapps=7))",
    u"(&(objectClass=orvoPerson)(!OrvoUserType = 0)(mail=*a*)(|(ProfileCN=Buyers) "
    u"(ProfileCN=sales)))",
    u"(& (objectClass=orvoPerson)(OrvoRole=3)(!OrvoUserType = 0))",
    u"(ProfileCN=Buyer's  Friends)",
    u"(ProfileCN=Buyer''s Friends)",
    u"(ProfileCN>=Guests!)",
    u"(ProfileCN<=buyers)",
    u"(ProfileCN=einkÄufer)",
    u"(ProfileCN=ПОКУПАТЕЛИ)",
    u"(cn=Temp (night) \\2a)",
    u"(cn=*(*)*)",
    u"(cn=Smith, John)",
    u"(cn=*s*m*)",
    u"(cn=j*)",
    u"(!(cn>=a))",
    u"(sn=*n)",
    u"(givenName=S*e)",
    u"(BusinessPartnerID>=1006)",
    u"(!(BusinessPartnerID<=1006))",
    u"(OrvoRole>=10)",
    u"(OrvoRole<=-1)",
    u"(OrvoUserType=four)",
    u"(!(OrvoUserType=four))",
    u"(!(shoeSize=12))",
    u"(|(shoeSize=12)(OrvoUserType=4))",
    u"(!(&(shoeSize=12)(OrvoUserType=4)))",
    u"(OrvoGUID=784d96962842c4cb02e266525d77410d)",
    u"(!(OrvoGUID=7*))",
    u"(cn:caseExactMatch:=jsmith)",
    u"(cn:caseExactMatch:=JSMITH)",
    u"(CreditCardExpiryDate>=20270101000000Z)",
    u"(CreditCardExpiryDate<=20270101000000Z)",
    u"(OutOfOfficeOn<=-1)",
    u"(&)",
    u"(|)",
};

struct NamedEntry {
    std::string name;
    PlainEntry entry;
};

std::vector<NamedEntry> every_entry(LdapProbe& probe) {
    std::vector<NamedEntry> entries;
    for (const std::string& name : probe.find(base, "(objectClass=*)")) {
        PlainEntry::Attributes attributes;
        for (const auto& [attribute, matching] : known)
            if (std::vector<std::string> values = probe.values(name, attribute); !values.empty())
                attributes.emplace_back(attribute, std::move(values));
        entries.push_back({name, PlainEntry(std::move(attributes))});
    }
    return entries;
}

TEST(AFilter, FindsWhatADirectoryServerFinds) {
    PrivateSlapd slapd;
    LdapProbe probe(slapd.url(), slapd.root_dn(), slapd.root_password());
    const std::vector<NamedEntry> entries = every_entry(probe);
    ASSERT_GT(entries.size(), 200u);
    int with_result = 0;
    for (const char16_t* text : filters) {
        const Filter filter = Filter::parse(text);
        const FilterMatcher matcher(filter, matching_of);
        std::vector<std::string> ours;
        for (const NamedEntry& one : entries)
            if (matcher.matches(one.entry)) ours.push_back(one.name);
        EXPECT_THAT(ours, testing::UnorderedElementsAreArray(probe.find(base, filter.text())))
            << to_utf8(text);
        with_result += ours.empty() ? 0 : 1;
    }
    EXPECT_GE(with_result, 20);  // most of them find something
}

}  // namespace
}  // namespace orvo::directory
