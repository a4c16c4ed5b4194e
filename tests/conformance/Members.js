// The users: created, found, searched, paged through, deleted.

var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(siteFile);
var service = info.GetMemScriptUser();
var code = info.GetMemScriptCode();
var prefix = "OrvoMembership.Members.";

function boundMembers() {
    var members = new ActiveXObject("OrvoMembership.Members");
    members.setServerInfo(siteFile);
    members.BindAs(service, code);
    return members;
}
var members = boundMembers();

// Who is in a search's answer, by name.
function found(/* criteria... */) {
    return column(members.GetOrvoUsers(arrayOf.apply(null, arguments)), "cn").join("|");
}
function withRole(role, criteria, sort) {
    return column(members.GetOrvoMembersHavingRoleEx(role, arrayOf(criteria), sort || ""), "cn");
}

// Creating.
var made = members.CreateUser("Script, User", "first-secret");
equal("the new user's name", made.CN, "Script, User");
equal("the new user's GUID", /^[0-9A-F]{32}$/.test(made.GUID), true);
equal("the new user's type", made.OrvoUserType, 0);
var validator = new ActiveXObject("OrvoMembership.Validator");
equal("the new user's password", validator.ValidatePassword("cn=Script\\, User", "first-secret"), 0);
equal("a wrong password", validator.ValidatePassword("cn=Script\\, User", "second-secret"), -1);

raisesLike("a name that is taken", 0x8004044F - 0x100000000,
           /ERROR 0x8004044F\r\n METHOD: OrvoMembership\.Members\.CreateUser\r\n DESC: Unable to add user:'jsmith'\. The error is: \(68\) The specified entry already exists\./,
           function () { members.CreateUser("jsmith", "first-secret"); });

var rich = new ActiveXObject("OrvoMembership.Members").CreateUserWithAttributes(
    "\u0416\u0430\u0440 (new)*", "pass-word", arrayOf("sn", "OrvoRole", "OrvoUserType", "mail"),
    arrayOf("\u0416\u0430\u0440", arrayOf(5, 24), 1, "zhar@shop.example"));
equal("created with attributes", rich.LastName, "\u0416\u0430\u0440");
equal("created with several values", rich.HasRole(24), true);

var registered = new ActiveXObject("OrvoMembership.Members");
equal("created from a registration page",
      registered.CreateUserOnFormsLogin("registrant", "welcome-1").CN, "registrant");
equal("its password", validator.ValidatePassword("registrant", "welcome-1"), 0);
registered.DeleteUser("registrant");
equal("deleted by the same object", found("cn=registrant"), "");

// Finding.
var guid = rich.GUID;
equal("found by GUID", members.GetUserFromGUID(guid).CN, "\u0416\u0430\u0440 (new)*");
raisesLike("an unknown GUID", 0x800A0BCD - 0x100000000, /METHOD: OrvoMembership\.Members\.GetUserFromGUID/,
           function () { members.GetUserFromGUID("0123"); });
var byGuid = new ActiveXObject("OrvoMembership.User");
byGuid.BindToGuid(guid, service, code);
equal("bound by GUID", byGuid.CN, "\u0416\u0430\u0440 (new)*");
equal("a property of a user bound by GUID", byGuid.EMailAddress, "zhar@shop.example");
raisesLike("bound by an unknown GUID", 0x800A0BCD - 0x100000000,
           /METHOD: OrvoMembership\.User\.BindToGuid/,
           function () { byGuid.BindToGuid("0123", service, code); });

// Searching.
equal("one name", found("cn=jsmith"), "jsmith");
equal("a name without regard to case", found("CN=JSmith"), "jsmith");
equal("several criteria", found("sn=Smith", "givenName=J*"), "jsmith|Smith, John");
equal("NOT", found("sn=Smith", "NOT givenName=*"), "Ann \"Andy\" <Smith>; =");
equal("nobody", found("cn=no such user"), "");
equal("without criteria", members.GetOrvoUsers(validator, "", 3).RecordCount,
      3);
raisesLike("criteria that are no array", 0x800A000D - 0x100000000,
           /METHOD: OrvoMembership\.Members\.GetOrvoUsers/,
           function () { members.GetOrvoUsers("cn=a*"); });
raisesLike("a filter that cannot be read", 0x8007203E - 0x100000000,
           /The following query failed: \(& \(objectClass=orvo(Person|Member)\)\(OrvoUserType=\*\)\(cn=\(\)\)/,
           function () { members.GetOrvoUsers(arrayOf("cn=(")); });

var columns = members.GetOrvoUsersEx(arrayOf("cn=jsmith"), arrayOf("SN", "OrvoUserType", "mail"));
equal("columns as asked for", columns.Fields.Item(0).Name + columns.Fields.Item(1).Name, "SNOrvoUserType");
equal("columns as a text",
      members.GetOrvoUsersEx(arrayOf("cn=jsmith"), "sn, mail").Fields.Item(1).Value,
      "john.smith@shop.example");
equal("a column's type", columns.Fields.Item("OrvoUserType").Value, 1);

// Page after page: everybody once.
var all = [], last = "", pages = 0;
do {
    var page = members.GetOrvoUsers(last == "" ? arrayOf("objectClass=*") : arrayOf("cn>=" + last),
                                    "", 30);
    all = all.concat(column(page, "cn"));
    last = members.GetLastPageValue();
    ++pages;
} while (page.RecordCount == 30 && pages < 50);
var once = {}, twice = 0;
for (var i = 0; i < all.length; ++i) {
    if (once["cn " + all[i]]) ++twice;
    once["cn " + all[i]] = true;
}
equal("nobody is seen twice", twice, 0);
equal("everybody is seen", all.length,
      members.GetOrvoUsers(arrayOf("objectClass=*"), "", 1000).RecordCount);
equal("the bookmark stays", members.GetLastPageValue(), last);

// Roles, one's own and the profile's.
var nights = withRole(24, "cn=*", "cn DESC");
equal("a role of one's own", nights.join("|").indexOf("Temp (night) *") >= 0, true);
equal("sorted downwards", nights.reverse().join("|"), withRole(24, "cn=*", "cn ASC").join("|"));
var buyers = withRole(2, "cn=jsmith");
equal("own roles or the profile's", buyers.join("|"), "jsmith");
var result = members.GetOrvoMembersHavingRole(24);
equal("the result's columns", result.Fields.Count, 5);
equal("the result's first column", result.Fields.Item(0).Name, "BusinessPartnerID");
var big = members.GetOrvoMembersHavingRoleEx(7, arrayOf("cn=bigpartner"), "");
equal("a partner beyond 32 bits", big.Fields.Item("BusinessPartnerID").Value, 0);

// The container's own entry.
equal("the container's name", new VBArray(members.GetAttribValue("ou")).getItem(0), "Users");
members.SetAttribValue("description", arrayOf("all of them"));
equal("an attribute of the container",
      new VBArray(members.GetAttribValue("description")).getItem(0), "all of them");

// Deleting.
members.DeleteUser("Script, User");
members.DeleteUser("\u0416\u0430\u0440 (new)*");
equal("they are gone", found("|(cn=Script, User)(sn=\u0416\u0430\u0440)"), "");
raises("a user who is not there", "80072030",
       block("80072030", prefix + "DeleteUser",
             "User with common name 'Script, User' doesn't exist in the directory"),
       function () { members.DeleteUser("Script, User"); });

// Without a binding.
var unbound = new ActiveXObject("OrvoMembership.Members");
unbound.BindAs("   ", "x");
raises("creating without a binding", "80040323",
       block("80040323", prefix + "CreateUser", "Not bound to the Members Organizational Unit"),
       function () { unbound.CreateUser("x", "y"); });
raises("deleting without a binding", "80040323",
       block("80040323", prefix + "DeleteUser", "Not bound to the Members Organizational Unit"),
       function () { unbound.DeleteUser("x"); });
raisesLike("a wrong account", 0x8007052E - 0x100000000, /METHOD: OrvoMembership\.Members\.BindAs/,
           function () { unbound.BindAs(service, "wrong"); });

end();
