var site = WScript.Arguments(0);
var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(site);
var members = new ActiveXObject("OrvoMembership.Members");
members.setServerInfo(site);
members.BindAs(info.GetMemScriptUser(), info.GetMemScriptCode());

var tina = members.CreateUser("tina", "a long secret");
tina.LastName = "Turner";
try {
    members.CreateUser("tina", "another secret");
} catch (error) {
    WScript.Echo(/\(68\)[^.]*/.exec(error.description)[0]);
}

var found = members.GetOrvoUsers(["sn=T*", "NOT mail=*"]);
for (; !found.EOF; found.MoveNext())
    WScript.Echo(found("cn") + ": " + found("sn"));
WScript.Echo(members.GetUserFromGUID(tina.GUID).CN);
members.DeleteUser("tina");

found = members.GetOrvoMembersHavingRole(24, "sn DESC");
WScript.Echo(found.RecordCount + " receivers, the first " + found("sn"));
