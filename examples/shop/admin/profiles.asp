<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
var title = "Profiles", message = "";
var profiles = opened("OrvoMembership.Profiles", title);

if (isPost()) {
    if (!isOwnForm()) {
        message = staleForm;
    } else {
        try {
            var wanted = posted("delete");
            if (wanted != "") {
                if (profiles.DeleteProfile(wanted)) goOn("profiles.asp", wanted + " has been deleted.");
                message = wanted + " is in use: members have this profile. It has not been deleted.";
            } else if (posted("name") == "") {
                message = "A profile needs a name.";
            } else {
                profiles.CreateProfile(posted("name"));
                goOn("profiles.asp", posted("name") + " has been created.");
            }
        } catch (error) {
            message = explained(error);
        }
    }
}

var names = [];
try {
    for (var list = profiles.AsRecordset(); !list.EOF; list.MoveNext())
        names.push(list.Fields.Item("cn").Value);
} catch (error) {
    message = message || explained(error);
}
head(title, message);
%>
<form class="card bar" method="post">
<%= tokenField() %>
<label>New profile <input name="name" required></label>
<button>Create</button>
</form>
<div class="card">
<table id="profiles">
<thead><tr><th>Profile</th><th></th></tr></thead>
<tbody>
<% for (var i = 0; i < names.length; i++) { %>
<tr><td><%= html(names[i]) %></td>
<td class="end"><form method="post"><%= tokenField() %><button class="quiet" name="delete" value="<%= html(names[i]) %>">Delete</button></form></td></tr>
<% } %>
</tbody>
</table>
</div>
<% foot(); %>
