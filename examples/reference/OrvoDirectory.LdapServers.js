// Nobody listens there.
var entry = new ActiveXObject("OrvoDirectory.Ldap").CreateEntry();
try {
    entry.Bind("127.0.0.1:1", "o=Shop", "", "cn=orvo-service,ou=Services,o=Shop", "secret", []);
} catch (error) {
    WScript.Echo(error.description);
}

var servers = new ActiveXObject("OrvoDirectory.LdapServers").States();
for (; !servers.EOF; servers.MoveNext())
    WScript.Echo(servers("Server").Value + (servers("State").Value == "up" ? " is up" : " is not"));
