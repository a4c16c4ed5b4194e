// What a script sees of failures: number and whole description.

var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(siteFile);
var access = "OrvoMembership.LDAPAccess.";
var boundFail = access + "BindAs";

function bind(name, user, code, server) {
    var entry = new ActiveXObject("OrvoMembership.LdapAccess");
    entry.BindAs(name, user || info.GetMemScriptUser(), code || info.GetMemScriptCode(),
                 server || info.GetServerName(), info.GetUserContainer());
    return entry;
}

raises("an unbound entry", "800A005B",
       block("5B", access + "GetAttribValue", "Object variable or With block variable not set"),
       function () { new ActiveXObject("OrvoMembership.LdapAccess").GetAttribValue("mail"); });

raises("wrong credentials", "8007052E",
       block("8007052E", boundFail, "(49) The user name or the password is wrong."),
       function () { bind("cn=jsmith", info.GetMemScriptUser(), "wrong"); });

raises("no such entry", "80072030",
       block("80072030", boundFail, "(32) There is no such entry. The nearest entry is '" +
             info.GetUserContainer() + "'."),
       function () { bind("cn=nobody"); });

if (info.GetPMMImplementation() == "OrvoDirectory.Embedded") {
    raises("a file that is not there", "8007203A",
           block("8007203A", boundFail, "(81) The server cannot be reached. '/nowhere/shop.db': " +
                 "No such file or directory."),
           function () { bind("cn=jsmith", null, null, "/nowhere/shop.db"); });
} else {
    raises("an unreadable server", "8007203F",
           block("8007203F", boundFail, "(89) A setting or argument is not valid. " +
                 "The server 'dir01:x' has a port that is not a number."),
           function () { bind("cn=jsmith", null, null, "dir01:x"); });
    raisesLike("an unreachable server", 0x8007203A | 0,
        /^\r\nERROR 0x8007203A\r\n METHOD: OrvoMembership.LDAPAccess.BindAs\r\n DESC: \(81\) The server cannot be reached. 'ldap:\/\/127.0.0.1:1'.*\.\r\n$/,
        function () { bind("cn=jsmith", null, null, "127.0.0.1:1"); });
}

raises("an unknown attribute", "8007200C",
       block("8007200C", access + "SetAttribValue", "(17) The attribute type is not defined. " +
             "noSuchAttribute: attribute type undefined"),
       function () { bind("cn=jsmith").SetAttribValue("noSuchAttribute", "x"); });

raises("insufficient rights", "80072098",
       block("80072098", access + "SetAttribValue", "(50) The rights are not sufficient."),
       function () {
           bind("cn=glee", info.FullUserPath("glee"), "shop-sample")
               .SetAttribValue("OrvoUserType", 4);
       });

raises("no such file", "800A0035",
       siteFile.replace(/\\/g, "/") + ".none: there is no such file",
       function () { info.SetConfiguration(siteFile + ".none"); });

raisesLike("a class that nobody has", -2146827859, /^Automation server can't create object/,
       function () { new ActiveXObject("OrvoMembership.Nothing"); });

// The methods through which a failure came, outermost first.
new ActiveXObject("OrvoMembership.Validator").setServerInfo(siteFile);
raises("an account that is not there", "80072030",
       block("80072030", "OrvoMembership.Account.Init",
             "(32) There is no such entry. The nearest entry is '" + info.GetAccountContainer() +
                 "'.",
             "Cannot bind with the administrator user, please check the administrator user in " +
             "LDAP"),
       function () { new ActiveXObject("OrvoMembership.Account").Init(77); });

raises("an error of the script's own", "800A0005", "not so",
       function () { throw new Error(0x800A0005 | 0, "not so"); });
equal("its message", new TypeError(5, "not so").message, "not so");
equal("an error without a number", new Error("not so").description, "not so");

end();
