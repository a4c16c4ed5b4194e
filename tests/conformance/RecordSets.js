// Record sets, as the searches of the users answer them. They are the product's own on every
// system, also where the system has a class of that kind: nothing here is left to it.

var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(siteFile);
var members = new ActiveXObject("OrvoMembership.Members");
members.setServerInfo(siteFile);
members.BindAs(info.GetMemScriptUser(), info.GetMemScriptCode());

var noCurrentRecord = "Either BOF or EOF is True, or the current record has been deleted. " +
    "Requested operation requires a current record.";
var noSuchItem = "Item cannot be found in the collection corresponding to the requested name or " +
    "ordinal.";
var closed = "Operation is not allowed when the object is closed.";

function namesOf(records) {
    var names = [];
    for (var i = 0; i < records.Fields.Count; ++i) names.push(records.Fields.Item(i).Name);
    return names.join(" ");
}
function ends(records) { return records.BOF + " " + records.EOF; }
function cn(records) { return records.Fields.Item("cn").Value; }

// What holds of every set without rows.
function expectNoRows(what, records) {
    equal(what + ", ends", ends(records), "true true");
    equal(what + ", rows", records.RecordCount, 0);
    raises(what + ", value", "800A0BCD", noCurrentRecord, function () { cn(records); });
    raises(what + ", MoveFirst", "800A0BCD", noCurrentRecord,
           function () { records.MoveFirst(); });
    raises(what + ", MoveNext", "800A0BCD", noCurrentRecord, function () { records.MoveNext(); });
    equal(what + ", columns", records.Fields.Count, 5);
}

// A search: its columns, its rows in the order of names, its first row current.
var found = members.GetOrvoUsers(arrayOf("|(cn=jsmith)(cn=glee)(cn=twomails)"));
equal("a search is open", found.State, 1);
equal("its columns", namesOf(found), "CN BusinessPartnerID mail givenName sn");
equal("its rows", found.RecordCount, 3);
equal("its first row", cn(found), "glee");
equal("within", ends(found), "false false");

// Fields, by name without regard to case, by number, through the default member.
found.MoveNext();
equal("by name", found.Fields.Item("givenName").Value, "John");
equal("in another case", found.Fields.Item("GIVENNAME").Value, "John");
equal("by number", found.Fields.Item(3).Value, "John");
equal("a field's name", found.Fields.Item("GIVENNAME").Name, "givenName");
equal("as the collection's default", found.Fields("sn").Value, "Smith");
equal("a number", found.Fields.Item("BusinessPartnerID").Value, 1001);
equal("of the record set itself", found("sn").Value, "Smith");
equal("as a value", found("sn") + ", " + found("givenName"), "Smith, John");
equal("its name", found("SN").Name, "sn");
equal("by number of the record set itself", found(3).Value, "John");
raises("a name that no column has", "800A0CC1", noSuchItem,
       function () { found.Fields.Item("PhoneNumber"); });
raises("a name that no column has, of the record set itself", "800A0CC1", noSuchItem,
       function () { found("PhoneNumber"); });
raises("a number behind the last column", "800A0CC1", noSuchItem,
       function () { found.Fields.Item(5); });
raises("a number below 0", "800A0CC1", noSuchItem, function () { found.Fields.Item(-1); });

// No value, several values.
found.MoveNext();
equal("the last row", cn(found), "twomails");
equal("no value", found.Fields.Item("givenName").Value, undefined);
equal("several values", textsOf(found.Fields.Item("mail").Value),
      "first@shop.example|second@shop.example");

// The ends.
found.MoveNext();
equal("behind the last row", ends(found), "false true");
equal("rows are counted wherever it stands", found.RecordCount, 3);
raises("a value behind the last row", "800A0BCD", noCurrentRecord, function () { cn(found); });
raises("further on", "800A0BCD", noCurrentRecord, function () { found.MoveNext(); });
equal("still behind the last row", ends(found), "false true");
found.MovePrevious();
equal("back from the end", cn(found), "twomails");
found.MoveFirst();
equal("at the first row again", cn(found), "glee");
found.MovePrevious();
equal("before the first row", ends(found), "true false");
raises("a value before the first row", "800A0BCD", noCurrentRecord, function () { cn(found); });
raises("further back", "800A0BCD", noCurrentRecord, function () { found.MovePrevious(); });
found.MoveLast();
equal("at the last row", cn(found), "twomails");
found.MoveFirst();
equal("walked through", column(found, "CN").join("|"), "glee|jsmith|twomails");

// What is found cannot be changed.
found.MoveFirst();
raises("writing a field", "800A0CB3",
       "Object or provider is not capable of performing requested operation.",
       function () { found.Fields.Item("sn").Value = "Other"; });
raises("writing a field of the record set itself", "800A0CB3",
       "Object or provider is not capable of performing requested operation.",
       function () { found("sn").Value = "Other"; });
equal("it is as it was", found.Fields.Item("sn").Value, "Lee");

// Closing.
found.Close();
equal("closed", found.State, 0);
raises("closing again", "800A0E78", closed, function () { found.Close(); });
raises("the end of a closed one", "800A0E78", closed, function () { return found.EOF; });
raises("moving in a closed one", "800A0E78", closed, function () { found.MoveNext(); });
raises("counting a closed one", "800A0E78", closed, function () { return found.RecordCount; });

// Nobody found.
expectNoRows("nobody", members.GetOrvoUsers(arrayOf("cn=no such user")));
expectNoRows("nobody with the role",
             members.GetOrvoMembersHavingRoleEx(2, arrayOf("cn=guest"), ""));

// A search for a role: those who have it by their profile come first, then those of their own.
var some = arrayOf("|(cn=jsmith)(cn=awalker)(cn=adevries)(cn=minusone)(cn=aivanov)");
var having = members.GetOrvoMembersHavingRoleEx(2, some, "");
equal("columns of a role search", namesOf(having), "BusinessPartnerID mail cn givenName sn");
equal("its rows, by profile and of their own", column(having, "CN").join("|"),
      "awalker|adevries|jsmith");
equal("its end", ends(having), "false true");
raises("a value behind its last row", "800A0BCD", noCurrentRecord, function () { cn(having); });
raises("beyond its last row", "800A0BCD", noCurrentRecord, function () { having.MoveNext(); });
raises("a name that no column of it has", "800A0CC1", noSuchItem,
       function () { having.Fields.Item("OrvoRole"); });
having.MoveFirst();
equal("its first row", cn(having), "awalker");
equal("its values", having.Fields("mail").Value + " " + having.Fields(3).Value,
      "awalker@shop.example Alice");
having.Sort = "cn DESC";
equal("sorted anew", column(having, "cn").join("|"), "jsmith|awalker|adevries");
equal("all are still there", having.RecordCount, 3);
having.Close();
raises("a role search that is closed", "800A0E78", closed, function () { return having.BOF; });
equal("sorted by the search",
      column(members.GetOrvoMembersHavingRoleEx(2, some, "cn DESC"), "cn").join("|"),
      "jsmith|awalker|adevries");

end();
