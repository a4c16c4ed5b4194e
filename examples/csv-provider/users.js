var site = WScript.Arguments(0);
var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(site);
var members = new ActiveXObject("OrvoMembership.Members");
members.setServerInfo(site);
members.BindAs(info.GetMemScriptUser(), info.GetMemScriptCode());

var found = members.GetOrvoUsersEx(["mail=*@shop.example", "NOT cn=reader"], ["cn", "sn"]);
for (; !found.EOF; found.MoveNext())
    WScript.Echo(found("cn") + ": " + found("sn"));
found = members.GetOrvoMembersHavingRole(24, "cn DESC");
WScript.Echo(found.RecordCount + " with role 24");

var user = new ActiveXObject("OrvoMembership.User");
user.BindAs("bob", info.GetMemScriptUser(), info.GetMemScriptCode());
WScript.Echo(user.FirstName + " is a " + user.Profile.CN + ", works as " + user.NTUser);

var validator = new ActiveXObject("OrvoMembership.Validator");
WScript.Echo(validator.ValidatePassword("reader", info.GetMemScriptCode()));
WScript.Echo(validator.ValidatePassword("reader", "guessed"));
WScript.Echo(validator.ValidatePassword("reader", info.GetMemScriptCode() + "\0guessed"));
try {
    user.LastName = "Black";
} catch (error) {
    WScript.Echo(/This directory[^.]*/.exec(error.description)[0]);
}
