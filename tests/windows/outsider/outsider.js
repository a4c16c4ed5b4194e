// The component among strangers: provider, configuration and log are somebody else's, who knows their
// published interfaces alone. What the component calls, in which order and with what, is in the
// outsider's journal.

var probe = new ActiveXObject("Outsider.Probe");

// The calls since the last time, one line for each.
function calls(what) {
    var lines = [];
    for (var i = 1; i < arguments.length; ++i) lines.push(arguments[i] + "\n");
    equal(what + ", calls", probe.Take(), lines.join(""));
}

function named(object, member, names, values) {
    return probe.CallNamed(object, member, names, values);
}

// A call that an object refuses before it is carried out. Not every engine of this language turns the
// code of it into a number and a text of its own.
function refused(what, code, number, body) {
    var seen = "no failure";
    try {
        body();
    } catch (error) {
        seen = (error.number < 0 ? error.number + 0x100000000 : error.number).toString(16);
    }
    seen = seen.toUpperCase();
    if (seen != code) equal(what, seen, number);
}

var site = "site.ini";
var keys = ["LDAPServer", "UserContainer", "ProfileContainer", "AccountContainer", "UserClass",
            "ProfileClass", "AccountClass", "ProfileNamingAttribute", "UserNamingAttribute",
            "AccountNamingAttribute", "UserMandatoryAttributes", "MemScriptUser", "MemScriptCode",
            "CookieName", "LDAPRoot", "ConfigFileName", "PlugableModuleImplementation"];
function reading(these) {
    var lines = [];
    for (var i = 0; i < these.length; ++i) lines.push("ReadConfigValue(MEMBERSHIP, " + these[i] + ")");
    return lines;
}
function callsOf(what, lines) { calls.apply(null, [what].concat(lines)); }
var missing = reading(["AccountClass", "CookieName", "ConfigFileName"]);
var noContext = "LogMessage(OrvoMembership.User.IObjectControl_Activate, \r\nERROR 0x0\r\n METHOD: " +
    "OrvoMembership.User.IObjectControl_Activate\r\n DESC: Not an actual error.\r\n " +
    "INFO: No objectcontext.\r\n, 1)";
var server = "dir01:389", users = "ou=Users,o=Shop";
var connected = "Connect(dir01:389, ou=Users,o=Shop, cn=script, code)";

// Settings: each key once, those without a value again.
var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(site);
callsOf("settings",
        ["new Quendra.Configuration", "LoadConfigurationFile(site.ini)"].concat(reading(keys)));
info.SetConfiguration("other.ini");
callsOf("settings once more",
        ["new Quendra.Configuration", "LoadConfigurationFile(other.ini)"].concat(missing));
equal("a setting", info.GetUserContainer(), users);
equal("an argument by its name",
      named(info, "makeLDAPString", arrayOf("icontainer", "IHOST"), arrayOf("o=Shop", "h")),
      "LDAP://h/o=Shop");
probe.Fail("LoadConfigurationFile", -2147024894, "site.ini: no such file");
raises("a configuration that fails", "80070002", "site.ini: no such file",
       function () { info.SetConfiguration(site); });
calls("a configuration that fails", "new Quendra.Configuration", "LoadConfigurationFile(site.ini)");

// Searches.
var members = new ActiveXObject("OrvoMembership.Members");
members.setServerInfo(site);
probe.Take();
members.BindAs("cn=script", "code");
calls("binding the container", "new Outsider.Directory", "CreateEntry()",
      "Bind(dir01:389, ou=Users,o=Shop, , cn=script, code, [])");
var found = members.GetOrvoUsers(arrayOf("mail=a*", "NOT sn=x"), "", 2);
calls("a search", "CreateSearch()", connected,
      "Execute((& (objectClass=shopPerson)(OrvoUserType=*)(mail=a*)(! sn=x)), " +
      "[CN, BusinessPartnerID, mail, givenName, sn], 2)");
equal("its rows", column(found, "CN").join(), "ann,bob");
equal("the bookmark of a full page", members.GetLastPageValue(), "bob!");
members.GetOrvoUsers(arrayOf("mail=a*"));
calls("a search, arguments left out at the end", "CreateSearch()", connected,
      "Execute((& (objectClass=shopPerson)(OrvoUserType=*)(mail=a*)), " +
      "[CN, BusinessPartnerID, mail, givenName, sn], 1000)");
named(members, "GetOrvoUsers", arrayOf("iPageSize", "iCriteria"), arrayOf(7, arrayOf("mail=b*")));
calls("a search, arguments by name", "CreateSearch()", connected,
      "Execute((& (objectClass=shopPerson)(OrvoUserType=*)(mail=b*)), " +
      "[CN, BusinessPartnerID, mail, givenName, sn], 7)");
named(members, "GetOrvoUsersEx", arrayOf("i_vAttributeNames", "ICRITERIA"),
      arrayOf(arrayOf("cn", "uid"), arrayOf("mail=b*")));
calls("columns by name", "CreateSearch()", connected,
      "Execute((& (objectClass=shopPerson)(OrvoUserType=*)(mail=b*)), [cn, uid], 1000)");
raises("no criteria", "800A000D", block("D", "OrvoMembership.Members.GetOrvoUsers", "Type mismatch"),
       function () { members.GetOrvoUsers(); });
probe.Take();
var having = named(members, "GetOrvoMembersHavingRole", arrayOf("iSortFields", "iRole"),
                   arrayOf("cn DESC", 2));
calls("a role", "CreateSearch()",
      "Connect(dir01:389, ou=Profiles,o=Shop, cn=script, code)",
      "Execute((&(objectClass=shopProfile)(OrvoRole=2)), [cn], 1000)", "CreateSearch()", connected,
      "Execute((&(objectClass=shopPerson)(!OrvoUserType = 0)(|(ProfileCN=ann) (ProfileCN=bob))), " +
      "[cn, BusinessPartnerID, mail, givenName, sn, orvorole], 1000)", "CreateSearch()", connected,
      "Execute((& (objectClass=shopPerson)(OrvoRole=2)(!OrvoUserType = 0)), " +
      "[CN, BusinessPartnerID, mail, givenName, sn], 1000)");
equal("who has it", column(having, "cn").join(), "bob,ann");

// A user.
var user = new ActiveXObject("OrvoMembership.User");
calls("a new user", noContext);
named(user, "BindAs", arrayOf("iPwd", "iCommonName", "iUsername"), arrayOf("pw", "ann", "cn=admin"));
calls("binding with named arguments", "new Outsider.Directory", "CreateEntry()",
      "Bind(dir01:389, ou=Users,o=Shop, cn=ann, cn=admin, pw, [cn, OrvoUserType, " +
      "BusinessPartnerID])", "GetValues(ProfileCN)", "GetValues(OrvoUserType)",
      "new Outsider.Directory", "CreateEntry()",
      "Bind(dir01:389, ou=Accounts,o=Shop, cn=0, cn=script,o=Shop, code, [])");
probe.Give("PhoneNumber", "123");
probe.Give("SpendLimit", "12.5");
equal("a text", user.PhoneNumber, "123");
equal("a currency", Number(user.SpendLimit), 12.5);
equal("no value", user.Fax, "");
calls("reading", "GetValues(PhoneNumber)", "GetValues(SpendLimit)",
      "GetValues(facsimiletelephonenumber)");
user.PhoneNumber = "456";
user.Fax = "";
user.SpendLimit = 3;
user.OneTimeUser = true;
calls("writing", "SetValues(PhoneNumber, [456])", "ClearValues(facsimiletelephonenumber)",
      "SetValues(SpendLimit, [3])", "SetValues(OneTimeUser, [1])");
refused("a text that is set to an object", "80020003", "800A01B6",
        function () { probe.SetByReference(user, "PhoneNumber", probe); });
refused("an object without a value where a text is wanted", "80020005", "800A000D",
        function () { user.GetAttribValue(probe); });
refused("a text where an object is wanted", "80020005", "800A000D",
        function () { info.LoadConfigFile(site); });
calls("nothing of it reaches the provider");
probe.Fail("GetValues", -2147016656, "(32) No such object");
var notThere = block("80072030", "OrvoMembership.User.GetAttribValue", "(32) No such object",
                     "Attribute is: Modem");
raises("a read that fails", "80072030", notThere, function () { user.GetAttribValue("Modem"); });
calls("a read that fails", "GetValues(Modem)", "LogMessage(Outsider, " +
      block("80072030", "OrvoMembership.User.GetAttribValue", notThere, "Attribute is: Modem") +
      ", 0)");
probe.Fail("Bind", -2147023570, "(49) Invalid credentials");
raises("a bind that fails", "8007052E",
       block("8007052E", "OrvoMembership.User.BindAs", "(49) Invalid credentials"),
       function () { user.BindAs("bob", "cn=admin", "wrong"); });
probe.Take();

// Entries come and go.
equal("a new user", members.CreateUser("new", "secret") === null, false);
var created = probe.Take().split("\n");
equal("created", created[0],
      "CreateChild([[shopPerson]], cn, [cn, OrvoGUID, userPassword, sn, objectClass])");
equal("bound", created.join("\n").indexOf("cn=new, cn=script, code") > 0, true);
members.DeleteUser("bob");
calls("deleting", "CreateEntry()", "Bind(dir01:389, ou=Users,o=Shop, , cn=script, code, [])",
      "DeleteChild(shopPerson, cn=bob,ou=Users,o=Shop)");

// Passwords, accounts, the provider's settings.
var validator = new ActiveXObject("OrvoMembership.Validator");
probe.Take();
equal("the provider's own answer", validator.ValidatePassword("ann", "pw"), -4);
calls("a password", "new Outsider.Directory", "CreateValidator()",
      "Open(dir01:389, ou=Users,o=Shop)", "Validate(cn=ann,ou=Users,o=Shop, pw)");
var account = new ActiveXObject("OrvoMembership.Account");
account.Init(2);
probe.Give("OrvoNTUser", "SHOP\\web");
equal("an account", account.NTUser, "SHOP\\web");
calls("an account", "new Outsider.Directory", "CreateEntry()",
      "Bind(dir01:389, ou=Accounts,o=Shop, cn=2, cn=script,o=Shop, code, [])",
      "GetValues(OrvoNTUser)");
var initialize = new ActiveXObject("OrvoMembership.Initialize");
callsOf("initialisation", ["new Quendra.Configuration", "Initialize(Empty)"].concat(missing));
equal("the pool", initialize.InitializeConnectionPool(arrayOf("max"), arrayOf(5)), true);
equal("the cache", initialize.InitializeCache(arrayOf(), arrayOf("a", 1)), false);
calls("both", "new Outsider.Directory", "CreateEntry()", "InitializeConnectionPool([max], [5])",
      "new Outsider.Directory", "CreateEntry()", "InitializeCache([], [a, 1])");
var accessor = new ActiveXObject("OrvoMembership.PMMAccessor");
accessor.InitConfigFile("named.ini");
callsOf("a named site file",
        ["new Quendra.Configuration", "LoadSiteConfigurationFile(named.ini)"].concat(missing));
equal("users of an application", accessor.GetLDAPUsers(7).RecordCount, 2);
calls("users of an application", "new Outsider.Directory", "CreateSearch()",
      "Connect(dir01:389, ou=Users,o=Shop, cn=script,o=Shop, code)",
      "Execute((& (objectClass=shopPerson)(orvoapps=7)), [CN], 1000)");

// Any entry.
var entry = new ActiveXObject("OrvoMembership.LdapAccess");
probe.Take();
named(entry, "BindAs", arrayOf("i_sContainer", "i_sServer", "i_sPwd", "i_sUsername", "i_sCN"),
      arrayOf("c", "s", "p", "u", "cn=x"));
entry.SetAttribValue("a", arrayOf(1, "b"));
entry.ClearAttribValue("a");
calls("an entry", "new Outsider.Directory", "CreateEntry()", "Bind(s, c, cn=x, u, p, [])",
      "SetValues(a, [1, b])", "ClearValues(a)");

end();
