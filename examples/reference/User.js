var site = WScript.Arguments(0);
var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(site);

var user = new ActiveXObject("OrvoMembership.User");
user.setServerInfo(site);
user.BindAs("jsmith", info.GetMemScriptUser(), info.GetMemScriptCode());
WScript.Echo(user.FirstName + " " + user.LastName + " may spend " + user.SpendLimit);

user.Position = "Head of purchasing";
WScript.Echo(user.Position);
user.AssignRole(4, true);
WScript.Echo("approves: " + user.ApproverRole + ", sells: " + user.SalesRole);

// The language is the profile's: the user has none of its own.
WScript.Echo(user.Profile.CN + " speaks " + user.LanguageID);
try {
    user.CheckAppUserAccess("Audit", 99);
} catch (error) {
    WScript.Echo(error.number == -2147220693 ? "no access" : error.description);
}
