<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
var title = "Members", message = "", done = asked("done");
var pageSize = 20;
var name = asked("name"), role = Number(asked("role")) || 0, after = asked("after");

var members = Server.CreateObject("OrvoMembership.Members");
var rows = [], next = "";

function take(records, most) {
    for (; !records.EOF && rows.length < most; records.MoveNext()) {
        var at = records.Fields;
        rows.push({
            cn: at.Item("cn").Value, first: at.Item("givenName").Value, last: at.Item("sn").Value,
            mail: at.Item("mail").Value, partner: at.Item("BusinessPartnerID").Value
        });
    }
}
function shown(value) {
    // Several values come as an array.
    return typeof value == "string" || typeof value == "number" ? html(value)
        : value === null || value === undefined ? ""
        : html(new VBArray(value).toArray().join(", "));
}
function link(withAfter) {
    return "members.asp?name=" + Server.URLEncode(name) + (role ? "&role=" + role : "") +
        (withAfter ? "&after=" + Server.URLEncode(withAfter) : "");
}

try {
    var criteria = ["cn=*"];
    if (name != "") {
        var part = "=*" + escapedForFilter(name) + "*";
        criteria.push("|(cn" + part + ")(sn" + part + ")(mail" + part + ")");
    }
    if (role) {
        // Found by their own roles and by their profiles': one list, a page of it is cut here.
        var found = members.GetOrvoMembersHavingRoleEx(role, criteria, "cn");
        var first = Number(after) || 0;
        if (first > 0 && first < found.RecordCount) found.Move(first);
        take(found, pageSize);
        if (first + pageSize < found.RecordCount) next = String(first + pageSize);
    } else {
        if (after != "") criteria.push("cn>=" + escapedForFilter(after));
        var page = members.GetOrvoUsers(criteria, "", pageSize);
        var full = page.RecordCount == pageSize;
        take(page, pageSize);
        if (full) next = members.GetLastPageValue();
    }
} catch (error) {
    message = explained(error);
}
%>
<!-- #include virtual="/parts/head.inc" -->
<div class="card">
<form class="bar" method="get">
<label>Name or mail <input name="name" value="<%= html(name) %>"></label>
<label>Role <select name="role"><%= option("", "any", role || "") %>
<% for (var i = 0; i < roleNames.length; i++) { %><%= option(roleNames[i][0], roleNames[i][1], role) %><% } %>
</select></label>
<button>Search</button>
<a class="button" href="member.asp">New member</a>
</form>
</div>
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
<% if (rows.length == 0) { %><p>Nobody.</p><% } %>
<div class="pages"><span><% if (after) { %><a href="<%= html(link("")) %>">From the beginning</a><% } %></span>
<% if (next) { %><a id="next" href="<%= html(link(next)) %>">Next page</a><% } %></div>
</div>
<!-- #include virtual="/parts/foot.inc" -->
