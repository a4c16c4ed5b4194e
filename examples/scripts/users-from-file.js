// New users, one for each line of a file: name;first name;last name;mail;first password
//
//   orvo-script users-from-file.js FILE        (cscript under Windows)
//
// A name that is taken is told and left alone, so that the script may be run again. The file has
// passwords in it: let nobody else read it, and delete it afterwards.

if (WScript.Arguments.length != 1) {
    WScript.Echo("usage: users-from-file.js FILE");
    WScript.Quit(2);
}

// The settings of the site, with the account that scripts work with.
var site = new ActiveXObject("Quendra.Configuration");
site.LoadSiteConfig(false);
var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.LoadConfigFile(site);

var members = new ActiveXObject("OrvoMembership.Members");
members.BindAs(info.GetMemScriptUser(), info.GetMemScriptCode());
var nameIsTaken = 0x8004044F - 0x100000000;

// What is wrong with a line; nothing where the user was made.
function problem(fields) {
    if (fields.length != 5) return "is no line of five fields";
    try {
        var user = members.CreateUser(fields[0], fields[4]);
        user.FirstName = fields[1];
        user.LastName = fields[2];
        user.EMailAddress = fields[3];
    } catch (error) {
        if (error.number != nameIsTaken) throw error;
        return "is there already";
    }
}

var made = 0, problems = 0;
var file = new ActiveXObject("Scripting.FileSystemObject").OpenTextFile(WScript.Arguments.Item(0));
while (!file.AtEndOfStream) {
    var line = file.ReadLine();
    if (!/\S/.test(line)) continue;
    var fields = line.split(";"), wrong = problem(fields);
    if (wrong) {
        WScript.Echo(fields[0] + " " + wrong);
        ++problems;
    } else {
        ++made;
    }
}
file.Close();
WScript.Echo(made + " made, " + problems + " not");
WScript.Quit(problems ? 1 : 0);
