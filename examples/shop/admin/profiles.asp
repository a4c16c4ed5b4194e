<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<!-- #include virtual="/parts/form.inc" -->
<%
var title = "Profiles", problem = "", wrong = "";
var profiles = opened("OrvoMembership.Profiles", title);

if (isPost()) {
    if (!isOwnForm()) {
        problem = staleForm;
    } else if (posted("name") == "") {
        problem = wrong = "A profile needs a name.";
    } else {
        try {
            profiles.CreateProfile(posted("name"));
            goOn("profile.asp?cn=" + Server.URLEncode(posted("name")), posted("name") + " has been created.");
        } catch (error) {
            problem = explained(error);
            if (error.number == taken) wrong = problem;
        }
    }
}

var names = [];
try {
    for (var list = profiles.AsRecordset(); !list.EOF; list.MoveNext())
        names.push(list.Fields.Item("cn").Value);
} catch (error) {
    problem = problem || explained(error);
}
head(title, wrong ? { text: "Nothing has been created.", fields: [{ id: "f-name", text: wrong }] } : problem);
%>
<form class="card bar" method="post" action="profiles.asp" novalidate>
<%= tokenField() %>
<% drawInput("name", "New profile", "required value=\"" + html(posted("name")) + "\"", wrong); %>
<button>Create</button>
</form>
<div class="card">
<table id="profiles" role="table">
<%= heads(["Profile"]) %>
<tbody role="rowgroup">
<% for (var i = 0; i < names.length; i++) { %>
<tr role="row"><%= cell("Profile", "<a href=\"profile.asp?cn=" + Server.URLEncode(names[i]) + "\">" + html(names[i]) + "</a>") %></tr>
<% } %>
</tbody>
</table>
</div>
<% foot(); %>
