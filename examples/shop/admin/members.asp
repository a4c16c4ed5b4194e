<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<!-- #include virtual="/parts/members.inc" -->
<%
var title = "Members", problem = "";
var wanted = wantedMembers(), after = asked("after");
var members = opened("OrvoMembership.Members", title), page = { rows: [], next: "" };
try {
    page = membersPage(members, wanted, after, 20);
} catch (error) {
    problem = explained(error);
}
head(title, problem);
%>
<form class="card bar" method="get" role="search">
<div class="field"><label for="f-name">Name or mail</label>
<input id="f-name" name="name" value="<%= html(wanted.name) %>"></div>
<div class="field"><label for="f-role">Role</label>
<select id="f-role" name="role"><%= option("", "any", wanted.role || "") %>
<% for (var i = 0; i < roleNames.length; i++) { %><%= option(roleNames[i][0], roleNames[i][1], wanted.role) %><% } %>
</select></div>
<div class="field"><label for="f-state">State</label>
<select id="f-state" name="state"><%= option("", "any", wanted.state) %>
<% for (var i = 0; i < states.length; i++) { %><%= option(states[i][0], states[i][1], wanted.state) %><% } %>
</select></div>
<button>Search</button>
</form>
<p class="bar"><a class="button plain" href="member.asp">New member</a>
<a class="button plain" href="<%= html(addressOf("members-csv.asp", wanted)) %>" download>Save list as CSV</a></p>
<div class="card">
<% if (page.rows.length) { %>
<table id="members" role="table">
<%= heads(["User name", "First name", "Last name", "E-mail", "Partner", "State"]) %>
<tbody role="rowgroup">
<% for (var i = 0; i < page.rows.length; i++) { var row = page.rows[i]; %>
<tr role="row"><%= cell("User name", memberLink(row.cn)) %><%= cell("First name", html(row.first)) %><%= cell("Last name", html(row.last)) %><%= cell("E-mail", html(row.mail)) %><%= cell("Partner", html(row.partner)) %><%= cell("State", row.state ? "<b class=\"mark\">" + row.state + "</b>" : "") %></tr>
<% } %>
</tbody>
</table>
<% } else if (!problem) { %><p id="nobody">Nobody was found.</p><% } %>
<% if (page.isCut) { %><p class="hint">Of those who have this role, not all may be listed: a search by role ends after 1,000.</p><% } %>
<% if (after || page.next) { %>
<nav class="pages" aria-label="Pages"><% if (after) { %><a href="<%= html(addressOf("members.asp", wanted)) %>">From the beginning</a><% } %>
<% if (page.next) { %><a id="next" href="<%= html(addressOf("members.asp", wanted, page.next)) %>">Next page</a><% } %></nav>
<% } %>
</div>
<% foot(); %>
