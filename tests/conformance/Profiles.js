// The profiles: listed, created, refused deletion while they have users, deleted.

var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(siteFile);
var service = info.GetMemScriptUser();
var code = info.GetMemScriptCode();
var prefix = "OrvoMembership.Profiles.";
new ActiveXObject("OrvoMembership.Members").setServerInfo(siteFile);

var profiles = new ActiveXObject("OrvoMembership.Profiles");
raises("deleting without a binding", "80040327",
       block("80040327", prefix + "DeleteProfile",
             "Object not bound to Profiles organizational unit. Call BindAs first"),
       function () { profiles.DeleteProfile("Buyers"); });

// An unbound object binds as the service account to create, and stays bound so.
var made = profiles.CreateProfile("Scripted, +Profile");
equal("the new profile's name", made.CN, "Scripted, +Profile");
var role = 24;
made.AssignRole(role, true);
equal("a role of the new profile", made.HasRole(role), true);
raises("a name that is taken", "8004044F",
       block("8004044F", prefix + "CreateProfile",
             "Unable to add profile with profile name:'Buyers'. The profile already exists."),
       function () { profiles.CreateProfile("Buyers"); });

var names = "|" + column(profiles.AsRecordset(), "cn").join("|") + "|";
equal("the list has the new one", names.indexOf("|Scripted, +Profile|") >= 0, true);
equal("the list has the old ones", names.indexOf("|Buyers|") >= 0, true);

// A user of the profile keeps it from being deleted.
profiles.BindAs(service, code);
var members = new ActiveXObject("OrvoMembership.Members");
var user = members.CreateUserWithAttributes("profile user", "secret-word",
                                            arrayOf("OrvoUserType", "ProfileCN"),
                                            arrayOf(1, "Scripted, +Profile"));
equal("deletion is refused", profiles.DeleteProfile("Scripted, +Profile"), false);
var found = column(members.GetOrvoMembersHavingRoleEx(role, arrayOf("cn=profile user"), ""), "cn");
equal("the role through the profile", found.join("|"), "profile user");
members.DeleteUser("profile user");
equal("deletion is done", profiles.DeleteProfile("Scripted, +Profile"), true);
raisesLike("a profile that is not there", 0x80072030 - 0x100000000,
           /METHOD: OrvoMembership\.Profiles\.DeleteProfile/,
           function () { profiles.DeleteProfile("Scripted, +Profile"); });

var other = new ActiveXObject("OrvoMembership.Profiles");
raisesLike("a wrong account", 0x8007052E - 0x100000000, /METHOD: OrvoMembership\.Profiles\.BindAs/,
           function () { other.BindAs(service, "wrong"); });

end();
