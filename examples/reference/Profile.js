var site = WScript.Arguments(0);
var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(site);

var profile = new ActiveXObject("OrvoMembership.Profile");
profile.setServerInfo(site);
profile.BindAs("Buyers", info.GetMemScriptUser(), info.GetMemScriptCode());
WScript.Echo(profile.CN + " speaks " + profile.LanguageID);
profile.AssignRole(7, true);
WScript.Echo("sells: " + profile.HasRole(7));
WScript.Echo("roles: " + new VBArray(profile.Roles).toArray().join(", "));
WScript.Echo("has users: " + !profile.GetUsers().EOF);
