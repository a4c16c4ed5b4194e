// A check of a password, as a provider makes it.
function check(user, password) {
    var throttle = new ActiveXObject("OrvoSuite.Throttle");
    if (!throttle.Admit(user)) return -5;
    var result = password == "secret" ? 0 : -1;
    throttle.Settle(result);
    return result;
}
var user = "cn=jsmith,ou=Users,o=Shop", throttle = new ActiveXObject("OrvoSuite.Throttle");
WScript.Echo("The site asks for " + (throttle.IsOn() ? "a throttle" : "none"));
WScript.Echo(check(user, "guess") + ", " + check(user, "secret"));

for (var rows = throttle.State(user, ""); !rows.EOF; rows.MoveNext())
    WScript.Echo(rows("Budget").Value + ": " + rows("Wrong").Value + " of " + rows("Most").Value);
