new ActiveXObject("OrvoMembership.Members").setServerInfo(WScript.Arguments(0));

var profiles = new ActiveXObject("OrvoMembership.Profiles");
// Without a binding it works as the membership script account from here on.
var made = profiles.CreateProfile("Night shift");
made.LanguageID = "de";
var list = profiles.AsRecordset();
for (; !list.EOF; list.MoveNext())
    WScript.Echo(list("cn"));
WScript.Echo("deleted: " + profiles.DeleteProfile("Night shift"));
WScript.Echo("deleted: " + profiles.DeleteProfile("Buyers"));
