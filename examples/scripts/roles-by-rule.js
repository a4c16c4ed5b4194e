// A rule for a role: who may spend at least so much has it, nobody else does.
//
//   orvo-script roles-by-rule.js ROLE LIMIT [apply]        (cscript under Windows)
//
// Without "apply" the script tells what it would do, and does nothing. Roles that a user has from a
// profile are left alone.

if (WScript.Arguments.length < 2) {
    WScript.Echo("usage: roles-by-rule.js ROLE LIMIT [apply]");
    WScript.Quit(2);
}
var role = Number(WScript.Arguments.Item(0)), limit = Number(WScript.Arguments.Item(1));
var applies = WScript.Arguments.length > 2 && WScript.Arguments.Item(2) == "apply";

// The settings of the site, with the account that scripts work with.
var site = new ActiveXObject("Quendra.Configuration");
site.LoadSiteConfig(false);
var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.LoadConfigFile(site);
var service = info.GetMemScriptUser(), code = info.GetMemScriptCode();

// An array as objects take it.
function arrayOf() {
    var items = new ActiveXObject("Scripting.Dictionary");
    for (var i = 0; i < arguments.length; ++i) items.Add(i, arguments[i]);
    return items.Items();
}

// Whether the role is the user's own.
function hasRole(user) {
    var own;
    try {
        own = new VBArray(user.Roles).toArray();
    } catch (noArray) {
        own = [user.Roles];
    }
    for (var i = 0; i < own.length; ++i)
        if (Number(own[i]) == role) return true;
    return false;
}

var members = new ActiveXObject("OrvoMembership.Members");
members.BindAs(service, code);
var changes = 0;
for (var all = members.GetOrvoUsersEx(arrayOf("sn=*"), arrayOf("cn")); !all.EOF; all.MoveNext()) {
    var name = all.Fields.Item("cn").Value;
    var user = new ActiveXObject("OrvoMembership.User");
    user.BindAs(name, service, code);
    var isMeant = Number(user.SpendLimit) >= limit;
    if (hasRole(user) == isMeant) continue;
    WScript.Echo((isMeant ? "+ " : "- ") + name);
    if (applies) user.AssignRole(role, isMeant);
    ++changes;
}
WScript.Echo(changes + (applies ? " changed" : " to change"));
