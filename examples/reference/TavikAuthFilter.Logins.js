var filter = new ActiveXObject("TavikAuthFilter.Connector");
filter.RegisterLogin("jsmith", [24], "at the desk", 1, 10);
filter.RegisterLogin("jsmith", [24], "on the phone", 1, 10);

var logins = new ActiveXObject("TavikAuthFilter.Logins");
var mine = new VBArray(logins.LoginsOf("on the phone")).toArray();
for (var i = 0; i < mine.length; i++)
    WScript.Echo((mine[i].IsThisOne ? "this one" : "another") + ", idle for less than a minute: " +
                 (mine[i].IdleTime < 60));
WScript.Echo(logins.EndLogin("on the phone", mine[1].ID));
WScript.Echo(filter.IsLoggedIn("at the desk", 24));

filter.RegisterLogin("jsmith", [24], "at home", 1, 10);
WScript.Echo(logins.EndOthers("at home") + " other ended");
WScript.Echo(logins.EndAllOf("jsmith") + " ended");
