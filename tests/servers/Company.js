// A company's directory as it is: nothing of it knows the product. People are found below their
// container, log in by several attributes, and have roles by groups.

var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(siteFile);
var validator = new ActiveXObject("OrvoMembership.Validator");
validator.setServerInfo(siteFile);
var service = info.GetMemScriptUser(), code = info.GetMemScriptCode();

function user(name, as, password) {
    var opened = new ActiveXObject("OrvoMembership.User");
    opened.BindAs(name, as || service, password || code);
    return opened;
}
function listed(records, column) {
    var values = [];
    for (; !records.EOF; records.MoveNext()) values.push(String(records.Fields.Item(column || "cn").Value));
    return values.join(" ");
}

equal("by name", validator.ValidatePassword("jsmith", "company-sample"), 0);
equal("by mail", validator.ValidatePassword("dirk.jansen@company.example", "company-sample"), 0);
equal("wrong", validator.ValidatePassword("jsmith", "guessed"), -1);
equal("nobody", validator.ValidatePassword("nobody", "company-sample"), -1);
equal("a pattern", validator.ValidatePassword("jsmit*", "company-sample"), -1);
equal("two of one name", validator.ValidatePassword("twin", "company-sample"), -1);
equal("one of the two, by mail", validator.ValidatePassword("tom.winter@company.example", "company-sample"), 0);

var dirk = user("djansen");
equal("cn", dirk.CN, "djansen");
equal("last name", dirk.LastName, "Jansen");
equal("mail", dirk.EMailAddress, "dirk.jansen@company.example");
equal("telephone", dirk.PhoneNumber, "+31 20 555 2001");
equal("type", dirk.OrvoUserType, 1);
equal("what there is nothing of", dirk.GUID, "");
equal("receiver", dirk.ReceiverRole, true);
equal("buyer", dirk.BuyerRole, false);
equal("no profile", dirk.ProfileCN, "");
equal("the account's name", dirk.NTUser, "shop-user");
equal("the account's password", dirk.NTPassword, "shop-user-sample");
var ada = user("ada.lee@company.example");
equal("an administrator", ada.IsAdmin, true);
equal("the administrators' account", ada.NTUser, "shop-administrator");
equal("as oneself", user("jsmith", info.FullUserPath("john.smith@company.example"), "company-sample").BuyerRole, true);

var members = new ActiveXObject("OrvoMembership.Members");
members.BindAs(service, code);
var everybody = members.GetOrvoUsers(["cn=*"], "", 4);
equal("first page", listed(everybody), "alee bkim cnovak djansen");
equal("next page", listed(members.GetOrvoUsers(["cn=*", "cn>=" + members.GetLastPageValue()], "", 4)),
      "efischer fgarcia jsmith mbrown");
equal("by role", listed(members.GetOrvoMembersHavingRole(2, "cn")), "jsmith mbrown");
equal("by type", listed(members.GetOrvoUsers(["OrvoUserType=4"])), "alee");
equal("by type, others", listed(members.GetOrvoUsers(["!(OrvoUserType=1)"])), "alee");
equal("by a part of the mail", listed(members.GetOrvoUsers(["mail=*kim*"])), "bkim");
equal("columns", listed(members.GetOrvoUsersEx(["cn=bkim"], "cn, PhoneNumber"), "PhoneNumber"), "+31 20 555 3002");

var carl = user("cnovak");
carl.BuyerRole = true;
equal("a role is given", user("cnovak").BuyerRole, true);
equal("and listed", listed(members.GetOrvoMembersHavingRole(2, "cn")), "cnovak jsmith mbrown");
carl.BuyerRole = false;
equal("and taken", user("cnovak").BuyerRole, false);

carl.PhoneNumber = "+31 20 555 9999";
equal("written", user("cnovak").PhoneNumber, "+31 20 555 9999");
validator.ChangePassword("mary.brown@company.example", "company-sample", "another-sample");
equal("a new password", validator.ValidatePassword("mbrown", "another-sample"), 0);
equal("the former one", validator.ValidatePassword("mbrown", "company-sample"), -1);

end();
