' Record sets as this language takes them: a field stands for its value, and puts have an index.

Dim info, members, found, field, name, seen
Const noSuchItem = "Item cannot be found in the collection corresponding to the requested name or ordinal."
Const readOnly = "Object or provider is not capable of performing requested operation."
Set info = CreateObject("OrvoMembership.ServerInfo")
info.SetConfiguration siteFile
Set members = CreateObject("OrvoMembership.Members")
members.setServerInfo siteFile
members.BindAs info.GetMemScriptUser(), info.GetMemScriptCode()
Set found = members.GetOrvoUsers(Array("cn=jsmith"))

Equal "fields by name", found("cn") & " " & found("GIVENNAME"), "jsmith John"
Equal "by number", "" & found(3), "John"
name = "sn"
Equal "by a variable", "" & found(name), "Smith"
Equal "as a condition", found("sn") = "Smith", True
Equal "its value", found("sn").Value, "Smith"
Equal "the same through the fields", found.Fields("sn").Value, "Smith"
Set field = found("sn")
Equal "a field that is kept", field.Name & "=" & field, "sn=Smith"

On Error Resume Next
Err.Clear

seen = "" & found("PhoneNumber")
Raised "a name that no column has", 3265, "ADODB.Fields", noSuchItem
found("sn") = "Other"
Raised "writing a field", 3251, "ADODB.Field", readOnly
found.Fields("sn") = "Other"
Raised "writing it through the fields", 3251, "ADODB.Field", readOnly
found("sn").Value = "Other"
Raised "writing its value", 3251, "ADODB.Field", readOnly
Equal "it is as it was", "" & found("sn"), "Smith"

Finish
