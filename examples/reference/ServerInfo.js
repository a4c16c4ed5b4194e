var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(WScript.Arguments(0));
WScript.Echo(info.GetPMMImplementation());
WScript.Echo(info.GetUserContainer());
WScript.Echo(new VBArray(info.GetUserClass()).toArray().join(", "));
WScript.Echo(info.FullUserPath("jsmith"));
WScript.Echo(info.makeLDAPString("LDAP://dir01:389/", "ou=Users,o=Shop", "jsmith"));
