' The component among strangers, as outsider.js has it, with what only this language can say: arguments
' left out in the middle, Set, and where a failure comes from.

Dim probe, info, members, user, rows, text
Set probe = CreateObject("Outsider.Probe")

Set members = CreateObject("OrvoMembership.Members")
members.setServerInfo "site.ini"
members.BindAs "cn=script", "code"
text = probe.Take()

Set rows = members.GetOrvoUsers(Array("mail=a*"), , 5)
Equal "an argument left out in the middle", probe.Take(), _
    "CreateSearch()" & vbLf & "Connect(dir01:389, ou=Users,o=Shop, cn=script, code)" & vbLf & _
    "Execute((& (objectClass=shopPerson)(OrvoUserType=*)(mail=a*)), " & _
    "[CN, BusinessPartnerID, mail, givenName, sn], 5)" & vbLf
Equal "rows", CLng(rows.RecordCount), CLng(2)

Set user = CreateObject("OrvoMembership.User")
user.BindAs "ann", "cn=admin", "pw"
text = probe.Take()
On Error Resume Next
Set user.PhoneNumber = probe
Raised "Set of a text", 438, "Microsoft VBScript runtime error", _
    "Object doesn't support this property or method"
user.PhoneNumber = probe
Raised "an object without a value", 13, "Microsoft VBScript runtime error", "Type mismatch"
Equal "nothing was written", probe.Take(), ""
probe.Fail "SetValues", -2147016552, "(50) Insufficient access"
user.PhoneNumber = "1"
Equal "the number of the provider's failure", CLng(Err.Number), CLng(-2147016552)
Equal "its source", CStr(Err.Source), "Outsider"
Err.Clear
text = probe.Take()
user.PhoneNumber = "2"
Equal "no failure", CLng(Err.Number), CLng(0)
Equal "a call that goes well", probe.Take(), "SetValues(PhoneNumber, [2])" & vbLf
On Error GoTo 0

Finish
