' Arguments that a method changes are changed in the caller's variables, whatever they hold.

Dim info, host, container, user, path, hosts(1)
Set info = CreateObject("OrvoMembership.ServerInfo")
info.SetConfiguration siteFile
Equal "the default value", CStr(info), siteFile

host = "LDAP://dir01:389/"
container = "o=Shop/ou=Users"
user = "jsmith"
path = info.makeLDAPString(host, container, user)
Equal "path", path, "LDAP://dir01:389/cn=jsmith,ou=Users,o=Shop"
Equal "host", host, "dir01:389"
Equal "container", container, "o=Shop/ou=Users"
Equal "user", user, "cn=jsmith"

hosts(0) = "ldaps://dir02/"
path = info.makeLDAPString(hosts(0), "o=Shop")
Equal "path without a user", path, "LDAP://dir02/o=Shop"
Equal "host in an array", hosts(0), "dir02"

host = "LDAP://dir03/"
path = info.makeLDAPString((host), container, (user))
Equal "path by value", path, "LDAP://dir03/cn=jsmith,ou=Users,o=Shop"
Equal "host by value", host, "LDAP://dir03/"

user = "jsmith"
path = info.FullUserPath(user)
Equal "full path", path, "cn=jsmith,ou=Users,o=Shop"
Equal "user of the full path", user, "jsmith"

' A variable that holds no text keeps its type where the text stays the same.
user = 4711
path = info.FullUserPath(user)
Equal "path of a number", path, "cn=4711,ou=Users,o=Shop"
Equal "the number", user, 4711

Finish
