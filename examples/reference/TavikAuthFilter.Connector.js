var filter = new ActiveXObject("TavikAuthFilter.Connector");
var guid = "0C4E3B3F6B8A4E0D9D1C2A7F5E6B8C90";

var record = filter.CreateUserWithGUID(guid);
record.UserName = "jsmith";
record.AccountPath = "cn=jsmith,ou=Users,o=Shop";
record.Save();
filter.RegisterLogin("jsmith", [3, 24], guid, 1, 10);
WScript.Echo(filter.IsLoggedIn(guid, 24) + ", " + filter.IsLoggedIn(guid, 7));
WScript.Echo(filter.FindUserByGUID(guid).AccountPath);

filter.Logout(guid);
WScript.Echo(filter.IsLoggedIn(guid, 24) + ", " + filter.FindUserByGUID(guid));
