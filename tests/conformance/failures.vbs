' What Err holds after a failure: number, source and description.

Dim info, entry, server, user, code, container
Const access = "OrvoMembership.LDAPAccess."
Const provider = "OrvoDirectory.Ldap"
Set info = CreateObject("OrvoMembership.ServerInfo")
info.SetConfiguration siteFile
server = info.GetServerName()
user = info.GetMemScriptUser()
code = info.GetMemScriptCode()
container = info.GetUserContainer()
Set entry = CreateObject("OrvoMembership.LdapAccess")

On Error Resume Next
Err.Clear

entry.GetAttribValue "mail"
Raised "an unbound entry", 91, "OrvoMembership", _
    Block("5B", access & "GetAttribValue", "Object variable or With block variable not set")

entry.BindAs "cn=jsmith", user, "wrong", server, container
Raised "wrong credentials", &H8007052E, provider, _
    Block("8007052E", access & "BindAs", "(49) The user name or the password is wrong.")

entry.BindAs "cn=nobody", user, code, server, container
Raised "no such entry", &H80072030, provider, _
    Block("80072030", access & "BindAs", _
          "(32) There is no such entry. The nearest entry is 'ou=Users,o=Shop'.")

entry.BindAs "cn=jsmith", user, code, "dir01:x", container
Raised "an unreadable server", &H8007203F, provider, _
    Block("8007203F", access & "BindAs", "(89) A setting or argument is not valid. " & _
          "The server 'dir01:x' has a port that is not a number.")

entry.BindAs "cn=jsmith", user, code, server, container
Raised "a good bind", 0, "", ""
entry.SetAttribValue "noSuchAttribute", "x"
Raised "an unknown attribute", &H8007200C, provider, _
    Block("8007200C", access & "SetAttribValue", "(17) The attribute type is not defined. " & _
          "noSuchAttribute: attribute type undefined")

info.SetConfiguration siteFile & ".none"
Raised "no such file", 53, "Quendra.Configuration", _
    Replace(siteFile, "\", "/") & ".none: there is no such file"

' Failures of the call itself, in the engine's words.
info.FullUserPath
Equal "a missing argument", Err.Number, CLng(449)
Err.Clear
info.NoSuchMember
Equal "a member that is not there", Err.Number, CLng(438)
Err.Clear
info.GetServerName = "dir02"
Equal "a method is no property", Err.Number <> 0, True
Err.Clear
info.FullUserPath Null
Equal "Null for a text", Err.Number, CLng(13)
Err.Clear
CreateObject "OrvoMembership.Nothing"
Equal "a class that nobody has", Err.Number, CLng(429)
Err.Clear

Finish
