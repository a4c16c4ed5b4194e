var accessor = new ActiveXObject("OrvoMembership.PMMAccessor");
accessor.InitConfigFile(WScript.Arguments(0));
var users = accessor.GetLDAPUsers(10);
for (; !users.EOF; users.MoveNext())
    WScript.Echo(users("CN"));
