var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(WScript.Arguments(0));
// The provider's name is read from the settings that all objects of the thread share.
new ActiveXObject("OrvoMembership.Members").setServerInfo(WScript.Arguments(0));

var creator = new ActiveXObject("OrvoMembership.PMMCreator");
var search = creator.GetPMMSearch();
search.Connect(info.GetServerName(), info.GetUserContainer(), info.GetMemScriptUser(),
               info.GetMemScriptCode());
var found = search.Execute("(&(objectClass=orvoPerson)(cn=j*))", ["cn", "sn"], 3);
for (; !found.EOF; found.MoveNext())
    WScript.Echo(found("cn") + ": " + found("sn"));

WScript.Echo(creator.GetPMMValidator().Validate("cn=jsmith,ou=Users,o=Shop", "guessed"));
