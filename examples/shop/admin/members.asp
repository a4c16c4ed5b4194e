<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
var title = "Members", message = "";
var pageSize = 20;
var name = asked("name"), role = Number(asked("role")) || 0, after = asked("after");
var members = opened("OrvoMembership.Members", title);
var rows = [], next = "";

function row(records) {
    var at = records.Fields;
    return {
        cn: at.Item("cn").Value, first: at.Item("givenName").Value, last: at.Item("sn").Value,
        mail: at.Item("mail").Value, partner: at.Item("BusinessPartnerID").Value
    };
}
function shown(value) {
    // Several values come as an array.
    return value !== null && typeof value == "object"
        ? html(new VBArray(value).toArray().join(", ")) : html(value);
}
function link(withAfter) {
    return "members.asp?name=" + Server.URLEncode(name) + (role ? "&role=" + role : "") +
        (withAfter ? "&after=" + Server.URLEncode(withAfter) : "");
}

try {
    var criteria = ["cn=*"];
    if (name != "") {
        var part = "=*" + escapedForFilter(name) + "*";
        criteria.push("|(cn" + part + ")(sn" + part + ")(givenName" + part + ")(mail" + part + ")");
    }
    if (role) {
        // One list of all who have the role, of their own or by their profile; it may name some twice.
        var seen = {}, first = Number(after) || 0, count = 0;
        var found = members.GetOrvoMembersHavingRoleEx(role, criteria, "cn");
        for (; !found.EOF && next == ""; found.MoveNext()) {
            var cn = "cn " + String(found.Fields.Item("cn").Value).toLowerCase();
            if (seen[cn]) continue;
            seen[cn] = true;
            count++;
            if (count > first + pageSize) next = String(first + pageSize);
            else if (count > first) rows.push(row(found));
        }
    } else {
        if (after != "") criteria.push("cn>=" + escapedForFilter(after));
        var page = members.GetOrvoUsers(criteria, "", pageSize);
        for (; !page.EOF; page.MoveNext()) rows.push(row(page));
        if (rows.length == pageSize) next = members.GetLastPageValue();
    }
} catch (error) {
    message = explained(error);
}
head(title, message);
%>
<form class="card bar" method="get">
<label>Name or mail <input name="name" value="<%= html(name) %>"></label>
<label>Role <select name="role"><%= option("", "any", role || "") %>
<% for (var i = 0; i < roleNames.length; i++) { %><%= option(roleNames[i][0], roleNames[i][1], role) %><% } %>
</select></label>
<button>Search</button>
<a class="button plain" href="member.asp">New member</a>
</form>
<div class="card">
<table id="members">
<thead><tr><th>User name</th><th>First name</th><th>Last name</th><th>E-mail</th><th>Partner</th></tr></thead>
<tbody>
<% for (var i = 0; i < rows.length; i++) { %>
<tr><td><a href="member.asp?cn=<%= Server.URLEncode(rows[i].cn) %>"><%= shown(rows[i].cn) %></a></td>
<td><%= shown(rows[i].first) %></td><td><%= shown(rows[i].last) %></td>
<td><%= shown(rows[i].mail) %></td><td><%= shown(rows[i].partner) %></td></tr>
<% } %>
</tbody>
</table>
<% if (rows.length == 0 && !message) { %><p id="nobody">Nobody was found.</p><% } %>
<div class="pages"><span><% if (after) { %><a href="<%= html(link("")) %>">From the beginning</a><% } %></span>
<% if (next) { %><a id="next" href="<%= html(link(next)) %>">Next page</a><% } %></div>
</div>
<% foot(); %>
