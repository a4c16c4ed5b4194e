#include "suite/directory/names/naming_types.h"

#include <algorithm>
#include <iterator>

namespace orvo::directory {
namespace {

struct Alias {
    std::string_view spelling;
    std::string_view type;
};
constexpr Alias aliases[] = {
    {"0.9.2342.19200300.100.1.1", "uid"},
    {"0.9.2342.19200300.100.1.10", "manager"},
    {"0.9.2342.19200300.100.1.11", "documentidentifier"},
    {"0.9.2342.19200300.100.1.20", "homephone"},
    {"0.9.2342.19200300.100.1.25", "dc"},
    {"0.9.2342.19200300.100.1.3", "mail"},
    {"0.9.2342.19200300.100.1.37", "associateddomain"},
    {"0.9.2342.19200300.100.1.41", "mobile"},
    {"0.9.2342.19200300.100.1.42", "pager"},
    {"0.9.2342.19200300.100.1.43", "co"},
    {"0.9.2342.19200300.100.1.44", "uniqueidentifier"},
    {"0.9.2342.19200300.100.1.8", "userclass"},
    {"0.9.2342.19200300.100.1.9", "host"},
    {"1.2.840.113549.1.9.1", "email"},
    {"1.3.6.1.1.1.1.0", "uidnumber"},
    {"1.3.6.1.1.1.1.1", "gidnumber"},
    {"2.16.840.1.113730.3.1.2", "departmentnumber"},
    {"2.16.840.1.113730.3.1.241", "displayname"},
    {"2.16.840.1.113730.3.1.3", "employeenumber"},
    {"2.16.840.1.113730.3.1.4", "employeetype"},
    {"2.5.4.10", "o"},
    {"2.5.4.11", "ou"},
    {"2.5.4.12", "title"},
    {"2.5.4.13", "description"},
    {"2.5.4.17", "postalcode"},
    {"2.5.4.20", "telephonenumber"},
    {"2.5.4.23", "facsimiletelephonenumber"},
    {"2.5.4.3", "cn"},
    {"2.5.4.4", "sn"},
    {"2.5.4.41", "name"},
    {"2.5.4.42", "givenname"},
    {"2.5.4.43", "initials"},
    {"2.5.4.44", "generationqualifier"},
    {"2.5.4.45", "x500uniqueidentifier"},
    {"2.5.4.46", "dnqualifier"},
    {"2.5.4.5", "serialnumber"},
    {"2.5.4.51", "houseidentifier"},
    {"2.5.4.6", "c"},
    {"2.5.4.65", "pseudonym"},
    {"2.5.4.7", "l"},
    {"2.5.4.8", "st"},
    {"2.5.4.9", "street"},
    {"commonname", "cn"},
    {"countryname", "c"},
    {"domaincomponent", "dc"},
    {"emailaddress", "email"},
    {"fax", "facsimiletelephonenumber"},
    {"friendlycountryname", "co"},
    {"gn", "givenname"},
    {"hometelephonenumber", "homephone"},
    {"localityname", "l"},
    {"mobiletelephonenumber", "mobile"},
    {"organizationalunitname", "ou"},
    {"organizationname", "o"},
    {"pagertelephonenumber", "pager"},
    {"pkcs9email", "email"},
    {"rfc822mailbox", "mail"},
    {"stateorprovincename", "st"},
    {"streetaddress", "street"},
    {"surname", "sn"},
    {"userid", "uid"},
};
static_assert(std::ranges::is_sorted(aliases, {}, &Alias::spelling));

}  // namespace

std::string_view naming_type(std::string_view type) {
    const auto found = std::ranges::lower_bound(aliases, type, {}, &Alias::spelling);
    return found != std::end(aliases) && found->spelling == type ? found->type : type;
}

}  // namespace orvo::directory
