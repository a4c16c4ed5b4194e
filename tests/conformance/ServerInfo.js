// The directory settings and the paths made from them.

function serverOf(info) {
    var server = info.GetServerName();
    var address = /^(ldaps:\/\/)?127\.0\.0\.1:\d+(\/\?cafile=.+)?$|^\/.+\/shop\.db$/;
    equal("the server's address", address.test(server), true);
    return server;
}

var info = new ActiveXObject("OrvoMembership.ServerInfo");

equal("server before loading", info.GetServerName(), "");
equal("user container before loading", info.GetUserContainer(), "");
equal("user class before loading", typeof info.GetUserClass(), "undefined");
equal("configuration path before loading", info.ConfigurationPath, "");

info.SetConfiguration(siteFile);

serverOf(info);
equal("script user", info.GetMemScriptUser(), "cn=orvo-service,ou=Services,o=Shop");
equal("script code", info.GetMemScriptCode(), "service-sample");
var provider = /\.db$/.test(info.GetServerName()) ? "OrvoDirectory.Embedded" : "OrvoDirectory.Ldap";
equal("provider", info.GetPMMImplementation(), provider);
equal("profile container", info.GetProfileContainer(), "ou=Profiles,o=Shop");
equal("user container", info.GetUserContainer(), "ou=Users,o=Shop");
equal("account container", info.GetAccountContainer(), "ou=Accounts,o=Shop");
equal("cookie", info.GetCookieName(), "QUENDRAID");
equal("profile class", info.GetProfileClass(), "orvoProfile");
equal("user classes", textsOf(info.GetUserClass()), "orvoPerson|top");
equal("account class", info.GetAccountClass(), "orvoAccount");
equal("user naming attribute", info.GetUserNamingAttribute(), "cn");
equal("profile naming attribute", info.GetProfileNamingAttribute(), "cn");
equal("account naming attribute", info.GetAccountNamingAttribute(), "cn");
equal("mandatory attributes", textsOf(info.GetUserMandatoryAttributes()), "sn|OrvoUserType");
equal("configuration file", info.GetConfigFileName(), "Directory.ini");
equal("configuration path", info.ConfigurationPath, siteFile);
equal("the default value", "" + info, siteFile);

equal("names have no case", info.getservername(), info.GetServerName());

equal("a bare user's path", info.FullUserPath("jsmith"), "cn=jsmith,ou=Users,o=Shop");
equal("a named user's path", info.FullUserPath("uid=jsmith"), "uid=jsmith,ou=Users,o=Shop");
equal("the path of no user", info.FullUserPath(""), "ou=Users,o=Shop");
equal("a path beyond ASCII", info.FullUserPath("\u0416\u0430\u043D\u043D\u0430 \uD83D\uDE00"),
      "cn=\u0416\u0430\u043D\u043D\u0430 \uD83D\uDE00,ou=Users,o=Shop");

equal("a directory URL", info.makeLDAPString("LDAP://dir01:389/", "ou=Users,o=Shop", "jsmith"),
      "LDAP://dir01:389/cn=jsmith,ou=Users,o=Shop");
equal("a URL without an object", info.makeLDAPString("dir01", "o=Shop/ou=Users"),
      "LDAP://dir01/ou=Users,o=Shop");
equal("a URL of an empty object", info.makeLDAPString("dir01", "o=Shop", ""),
      "LDAP://dir01/o=Shop");

end();
