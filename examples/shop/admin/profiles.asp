<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
var title = "Profiles", message = "", done = "";

var profiles = Server.CreateObject("OrvoMembership.Profiles");
if (isPost()) {
    if (!isOwnForm()) {
        message = staleForm;
    } else {
        try {
            if (posted("delete") != "") {
                if (profiles.DeleteProfile(posted("delete")))
                    done = posted("delete") + " has been deleted.";
                else
                    message = posted("delete") + " still has users.";
            } else if (posted("name") == "") {
                message = "A profile needs a name.";
            } else {
                profiles.CreateProfile(posted("name"));
                done = posted("name") + " has been created.";
            }
        } catch (error) {
            message = explained(error);
        }
    }
}
var list = profiles.AsRecordset();
%>
<!-- #include virtual="/parts/head.inc" -->
<form class="card bar" method="post">
<%= tokenField() %>
<label>New profile <input name="name" required></label>
<button>Create</button>
</form>
<div class="card">
<table id="profiles">
<thead><tr><th>Profile</th><th></th></tr></thead>
<tbody>
<% for (; !list.EOF; list.MoveNext()) { var name = list.Fields.Item("cn").Value; %>
<tr><td><%= html(name) %></td>
<td><form method="post"><%= tokenField() %><button class="quiet" name="delete" value="<%= html(name) %>">Delete</button></form></td></tr>
<% } %>
</tbody>
</table>
</div>
<!-- #include virtual="/parts/foot.inc" -->
