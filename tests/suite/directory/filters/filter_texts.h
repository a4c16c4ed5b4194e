#pragma once

// The two tables of filter texts: what is read, and to what; what is refused, and with which words.
// The same texts seed the tests with random changes.

#include <string_view>

#include "platform/values/text.h"

namespace orvo::directory {

struct AcceptedFilter {
    TextView text;
    std::string_view strict;
};

using namespace std::string_view_literals;

inline constexpr AcceptedFilter accepted_filters[] = {
    // As the component makes them.
    {u"(& (objectClass=person)(OrvoUserType=*))", "(&(objectClass=person)(OrvoUserType=*))"},
    {u"(& (objectClass=person)(OrvoUserType=*)(OrvoGUID=x))",
     "(&(objectClass=person)(OrvoUserType=*)(OrvoGUID=x))"},
    {u"(& (objectClass=person)(OrvoUserType=*)(! mail=*))",
     "(&(objectClass=person)(OrvoUserType=*)(!(mail=*)))"},
    {u"(& (objectClass=person)(|(orvousertype = 4)(orvousertype = 33)))",
     "(&(objectClass=person)(|(orvousertype=4)(orvousertype=33)))"},
    {u"(& (objectClass=person)(orvoapps=-7))", "(&(objectClass=person)(orvoapps=-7))"},
    {u"(&(objectClass=person)(!OrvoUserType = 0)(mail=a*)(|(ProfileCN=a) (ProfileCN=b)))",
     "(&(objectClass=person)(!(OrvoUserType=0))(mail=a*)(|(ProfileCN=a)(ProfileCN=b)))"},
    {u"(& (objectClass=person)(OrvoRole=3)(!OrvoUserType = 0))",
     "(&(objectClass=person)(OrvoRole=3)(!(OrvoUserType=0)))"},
    {u"(& (objectClass=person)(OrvoUserType=*)(cn>=Smith, John!))",
     "(&(objectClass=person)(OrvoUserType=*)(cn>=Smith, John!))"},
    {u"(& (objectClass=person)(OrvoUserType=*)(cn>=Temp (night) *!))",
     "(&(objectClass=person)(OrvoUserType=*)(cn>=Temp \\28night\\29 \\2a!))"},
    {u"(&(objectClass=person)(ProfileCN=Buyer''s Friends))",
     "(&(objectClass=person)(ProfileCN=Buyer''s Friends))"},
    {u"(&(objectClass=person)(ProfileCN=Shop (London)))",
     "(&(objectClass=person)(ProfileCN=Shop \\28London\\29))"},
    {u"(&(objectClass=person)(ProfileCN=Sales *))",
     "(&(objectClass=person)(ProfileCN=Sales\\20*))"},
    {u"(&(objectClass=person)(ProfileCN=North\\South))",
     "(&(objectClass=person)(ProfileCN=North\\5cSouth))"},
    {u"(&(objectClass=person)(ProfileCN=Einkäufer))",
     "(&(objectClass=person)(ProfileCN=Einkäufer))"},

    // Strict ones.
    {u"(cn=Babs Jensen)", "(cn=Babs Jensen)"},
    {u"(!(cn=Tim Howes))", "(!(cn=Tim Howes))"},
    {u"(&(objectClass=Person)(|(sn=Jensen)(cn=Babs J*)))",
     "(&(objectClass=Person)(|(sn=Jensen)(cn=Babs J*)))"},
    {u"(o=univ*of*mich*)", "(o=univ*of*mich*)"},
    {u"(o=*of*)", "(o=*of*)"},
    {u"(o=*mich)", "(o=*mich)"},
    {u"(seeAlso=)", "(seeAlso=)"},
    {u"(cn:caseExactMatch:=Fred Flintstone)", "(cn:caseExactMatch:=Fred Flintstone)"},
    {u"(cn:=Betty Rubble)", "(cn:=Betty Rubble)"},
    {u"(sn:dn:2.4.6.8.10:=Barney Rubble)", "(sn:dn:2.4.6.8.10:=Barney Rubble)"},
    {u"(o:dn:=Ace Industry)", "(o:dn:=Ace Industry)"},
    {u"(:1.2.3:=Wilma Flintstone)", "(:1.2.3:=Wilma Flintstone)"},
    {u"(:DN:2.4.6.8.10:=Dino)", "(:dn:2.4.6.8.10:=Dino)"},
    {u"(o=Parens R Us \\28for all your parenthetical needs\\29)",
     "(o=Parens R Us \\28for all your parenthetical needs\\29)"},
    {u"(cn=*\\2A*)", "(cn=*\\2a*)"},
    {u"(filename=C:\\5cMyFile)", "(filename=C:\\5cMyFile)"},
    {u"(bin=\\00\\00\\00\\04)", "(bin=\\00\\00\\00\\04)"},
    {u"(sn=Lu\\c4\\8di\\c4\\87)", "(sn=Lučić)"},
    {u"(1.3.6.1.4.1.1466.0=\\04\\02\\48\\69)", "(1.3.6.1.4.1.1466.0=\\04\\02Hi)"},
    {u"(cn;lang-de;x-old>=a)", "(cn;lang-de;x-old>=a)"},
    {u"(sn~=smith)", "(sn~=smith)"},
    {u"(&)", "(&)"},
    {u"(|)", "(|)"},

    // Blanks.
    {u" \t\r\n( & ( cn = a ) ( | ( sn = b ) ( sn <= c ) ) ( ! ( mail = * ) ) ) ",
     "(&(cn=a)(|(sn=b)(sn<=c))(!(mail=*)))"},
    {u"(cn =  a  b  )", "(cn=a  b)"},
    {u"(cn=\\20a\\20)", "(cn=\\20a\\20)"},
    {u"(cn=\\20 a \\20 )", "(cn=\\20 a \\20)"},
    {u"(cn= * a *b* )", "(cn=*\\20a\\20*b*)"},
    {u"( cn : dn : caseExactMatch := a )", "(cn:dn:caseExactMatch:=a)"},
    {u"(cn= )", "(cn=)"},

    // Parentheses missing or too many.
    {u"cn=a", "(cn=a)"},
    {u"cn=Shop (London)", "(cn=Shop \\28London\\29)"},
    {u"&(cn=a)(sn=b)", "(&(cn=a)(sn=b))"},
    {u"!mail=*", "(!(mail=*))"},
    {u"(!!cn=a)", "(!(!(cn=a)))"},
    {u"(!&(cn=a)(sn=b))", "(!(&(cn=a)(sn=b)))"},
    {u"(! (mail=*) )", "(!(mail=*))"},
    {u"((cn=a))", "(cn=a)"},
    {u"(&((mail=*))( (!cn=a) ))", "(&(mail=*)(!(cn=a)))"},

    // Values.
    {u"(cn=a(b(c)d)e)", "(cn=a\\28b\\28c\\29d\\29e)"},
    {u"(cn=Smith (& Sons))", "(cn=Smith \\28& Sons\\29)"},
    {u"(cn=(!))", "(cn=\\28!\\29)"},
    {u"(cn=())", "(cn=\\28\\29)"},
    {u"(!cn = a (b) )", "(!(cn=a \\28b\\29))"},
    {u"(cn=(a)*(b))", "(cn=\\28a\\29*\\28b\\29)"},
    {u"(cn=O'Brien \"Bob\" & Co | a!=b <>~:)", "(cn=O'Brien \"Bob\" & Co | a!=b <>~:)"},
    {u"(cn==a)", "(cn==a)"},
    {u"(cn=\\)", "(cn=\\5c)"},
    {u"(cn=\\4)", "(cn=\\5c4)"},
    {u"(cn=\\4g\\\\41)", "(cn=\\5c4g\\5cA)"},
    {u"(cn=a**b***)", "(cn=a*b*)"},
    {u"(cn=***)", "(cn=*)"},
    {u"(cn>=*)", "(cn>=\\2a)"},
    {u"(cn<=a*b)", "(cn<=a\\2ab)"},
    {u"(cn=\u65E5\u672C \U0001F600)", "(cn=\u65E5\u672C \U0001F600)"},
    {u"(cn=\\f0\\9f\\98\\80)", "(cn=\U0001F600)"},
    {u"(cn=\\c0\\80\\ed\\a0\\80\\ff)", "(cn=\\c0\\80\\ed\\a0\\80\\ff)"},
    {u"(cn=\\f4\\90\\80\\80\\e2\\82)", "(cn=\\f4\\90\\80\\80\\e2\\82)"},
    {u"(cn=a\0b\x7F\x1F)"sv, "(cn=a\\00b\\7f\\1f)"},
    {u"(cn=a\tb\t)", "(cn=a\\09b)"},
};

struct RefusedFilter {
    TextView text;
    TextView reason;  // from "Character" to what is wrong
};

inline constexpr RefusedFilter refused_filters[] = {
    {u"", u"Character 1: the filter is empty"},
    {u"  ", u"Character 3: the filter is empty"},
    {u"()", u"Character 1: the parentheses are empty"},
    {u"(& (objectClass=person)( ))", u"Character 24: the parentheses are empty"},
    {u"(", u"Character 1: the parenthesis is not closed"},
    {u"(cn=a", u"Character 1: the parenthesis is not closed"},
    {u"(cn=a\xD83D)", u"Character 6: half of a surrogate pair stands alone"},
    {u"(cn=\xD83D\xDE00\xDE00)", u"Character 7: half of a surrogate pair stands alone"},
    {u"(&(cn=a)", u"Character 1: the parenthesis is not closed"},
    {u"(&(cn=a(b)", u"Character 3: the parenthesis is not closed"},
    {u"(&(cn=a(b(c)", u"Character 8: the parenthesis is not closed"},
    {u"cn=a(b", u"Character 5: the parenthesis is not closed"},
    {u")", u"Character 1: an attribute's name is expected"},
    {u"(cn=a))", u"Character 7: the parenthesis closes nothing"},
    {u"cn=a)", u"Character 5: the parenthesis closes nothing"},
    {u"(&(ProfileCN=a)b))", u"Character 16: '(' is expected"},
    {u"(cn=a) b", u"Character 8: the filter has ended before this"},
    {u"(cn=a)(sn=b)",
     u"Character 7: another filter begins; several are joined by '&' or '|' before the first"},
    {u"((cn=a)(sn=b))",
     u"Character 8: another filter begins; several are joined by '&' or '|' before the first"},
    {u"((cn=a) b)", u"Character 9: ')' is expected"},
    {u"(!(cn=a)(sn=b))",
     u"Character 9: another filter begins; several are joined by '&' or '|' before the first"},
    {u"(&cn=a)", u"Character 3: '(' is expected"},
    {u"(!)", u"Character 3: a filter is expected after '!'"},
    {u"!", u"Character 2: a filter is expected after '!'"},
    {u"(=a)", u"Character 2: an attribute's name is expected"},
    {u"(*=a)", u"Character 2: an attribute's name is expected"},
    {u"(é=a)", u"Character 2: an attribute's name is expected"},
    {u"(1cn=a)", u"Character 2: this is not an attribute's name"},
    {u"(1=a)", u"Character 2: this is not an attribute's name"},
    {u"(1.02=a)", u"Character 2: this is not an attribute's name"},
    {u"(1.2.=a)", u"Character 2: this is not an attribute's name"},
    {u"(c.n=a)", u"Character 2: this is not an attribute's name"},
    {u"(cn;=a)", u"Character 2: this is not an attribute's name"},
    {u"(;x=a)", u"Character 2: this is not an attribute's name"},
    {u"(c_n=a)", u"Character 3: an operator ('=', '>=', '<=', '~=' or ':=') is expected"},
    {u"(cn)", u"Character 4: an operator ('=', '>=', '<=', '~=' or ':=') is expected"},
    {u"cn", u"Character 3: an operator ('=', '>=', '<=', '~=' or ':=') is expected"},
    {u"(NOT mail=*)", u"Character 6: an operator ('=', '>=', '<=', '~=' or ':=') is expected"},
    {u"(cn>a)", u"Character 4: an operator ('=', '>=', '<=', '~=' or ':=') is expected"},
    {u"(cn> =a)", u"Character 4: an operator ('=', '>=', '<=', '~=' or ':=') is expected"},
    {u"(cn!=a)", u"Character 4: an operator ('=', '>=', '<=', '~=' or ':=') is expected"},
    {u"(cn~", u"Character 4: an operator ('=', '>=', '<=', '~=' or ':=') is expected"},
    {u"(cn:a)", u"Character 6: ':=' is expected"},
    {u"(cn:", u"Character 5: a matching rule is expected"},
    {u"(cn:a:b:=c)", u"Character 7: a matching rule is expected"},
    {u"(cn:dn:dn:dn:=c)", u"Character 11: a matching rule is expected"},
    {u"(cn:1.b:=c)", u"Character 5: a matching rule is expected"},
    {u"(:=a)", u"Character 2: an attribute or a matching rule is expected before ':='"},
    {u"(:dn:=a)", u"Character 5: an attribute or a matching rule is expected before ':='"},
    {u"(cn~=a*)", u"Character 7: a wildcard is not possible here; an asterisk is written '\\2a'"},
    {u"(cn:=*)", u"Character 6: a wildcard is not possible here; an asterisk is written '\\2a'"},
    {u"(&(cn=a(sn=b)))",
     u"Character 8: another filter begins before this one is closed; a parenthesis that belongs "
     u"to the value is written '\\28'"},
    {u"(&(cn=a ( ! mail = *)))",
     u"Character 9: another filter begins before this one is closed; a parenthesis that belongs "
     u"to the value is written '\\28'"},
    {u"(&(cn=a(!(mail=*))))",
     u"Character 8: another filter begins before this one is closed; a parenthesis that belongs "
     u"to the value is written '\\28'"},
    {u"(&(cn=Shop :()(mail=*))",
     u"Character 15: another filter begins before this one is closed; a parenthesis that belongs "
     u"to the value is written '\\28'"},
    {u"(&(cn=\U0001F600(| (sn>=b))))",
     u"Character 9: another filter begins before this one is closed; a parenthesis that belongs "
     u"to the value is written '\\28'"},
};

}  // namespace orvo::directory
