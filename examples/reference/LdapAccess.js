var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(WScript.Arguments(0));

var entry = new ActiveXObject("OrvoMembership.LdapAccess");
entry.BindAs("cn=jsmith", info.GetMemScriptUser(), info.GetMemScriptCode(), info.GetServerName(),
             info.GetUserContainer());
WScript.Echo(entry.GetAttribValue("mail"));
entry.SetAttribValue("Position", "Head of purchasing");
WScript.Echo(entry.GetAttribValue("Position"));
entry.ClearAttribValue("Position");
WScript.Echo(typeof entry.GetAttribValue("Position"));

var settings = new ActiveXObject("OrvoMembership.LdapAccess");
settings.BindToConfig();
WScript.Echo(settings.GetAttributeName("Company"));
