// Who has a role, as a file for a spreadsheet.
//
//   orvo-script role-as-csv.js ROLE FILE        (cscript under Windows)

if (WScript.Arguments.length != 2) {
    WScript.Echo("usage: role-as-csv.js ROLE FILE");
    WScript.Quit(2);
}
var role = Number(WScript.Arguments.Item(0)), file = WScript.Arguments.Item(1);

// The settings of the site, with the account that scripts work with.
var site = new ActiveXObject("Quendra.Configuration");
site.LoadSiteConfig(false);
var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.LoadConfigFile(site);

function cell(value) {
    return value === null || value === undefined ? "" : '"' + String(value).replace(/"/g, '""') + '"';
}

var members = new ActiveXObject("OrvoMembership.Members");
members.BindAs(info.GetMemScriptUser(), info.GetMemScriptCode());
var columns = ["cn", "givenName", "sn", "mail"], lines = 0;
var csv = new ActiveXObject("Scripting.FileSystemObject").CreateTextFile(file, true);
csv.WriteLine(columns.join(","));
for (var found = members.GetOrvoMembersHavingRole(role, "cn"); !found.EOF; found.MoveNext()) {
    var cells = [];
    for (var i = 0; i < columns.length; ++i)
        cells.push(cell(found.Fields.Item(columns[i]).Value));
    csv.WriteLine(cells.join(","));
    ++lines;
}
csv.Close();
WScript.Echo(lines + " with the role " + role);
