new ActiveXObject("OrvoMembership.Members").setServerInfo(WScript.Arguments(0));

// The account under which work for registered users (type 1) is done.
var account = new ActiveXObject("OrvoMembership.Account");
account.Init(1);
WScript.Echo(account.NTUser);
WScript.Echo(account.NTPassword != "");
