<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<!-- #include virtual="/parts/logins.inc" -->
<%
// Where else somebody with this account is logged in, to end it.
var problem = "";
if (isPost()) {
    if (!isOwnForm()) {
        problem = staleForm;
    } else if (posted("do") == "others") {
        endOtherLogins();
        goOn("logins.asp", "Your other logins have been ended.");
    } else if (endLoginOf(posted("do"))) {
        goOn("logins.asp", "The login has been ended.");
    } else {
        problem = "This login has ended already.";
    }
}

var logins = liveLogins(), now = new Date();
function ago(seconds) {
    return moment(new Date(now - seconds * 1000));
}
head("My logins", problem);
%>
<p><a href="/account/">My account</a></p>
<div class="card">
<table id="logins" role="table">
<%= heads(["Since", "Last seen", "End"]) %>
<tbody role="rowgroup">
<% for (var i = 0; i < logins.length; i++) { var login = logins[i]; %>
<tr role="row"><%= cell("Since", ago(login.Age)) %><%= cell("Last seen", ago(login.IdleTime)) %>
<td role="cell" data-title="End"><% if (login.IsThisOne) { %><b>this one</b><% } else { %>
<form method="post" action="logins.asp"><%= tokenField() %><button class="quiet" name="do" value="<%= html(login.ID) %>" aria-label="End login <%= i + 1 %>">End</button></form><% } %></td></tr>
<% } %>
</tbody>
</table>
<% if (logins.length > 1) { %>
<form class="bar" method="post" action="logins.asp"><%= tokenField() %><button name="do" value="others">End all others</button></form>
<% } %>
<p class="hint">If one of these is not you, end it, and <a href="/password.asp">change your password</a>.</p>
</div>
<% foot(); %>
