<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<!-- #include virtual="/parts/form.inc" -->
<!-- #include virtual="/parts/members.inc" -->
<%
// One profile: what it gives to its members, and who they are.
var cn = asked("cn"), self = "profile.asp?cn=" + Server.URLEncode(cn), after = asked("after");
var members = opened("OrvoMembership.Members", cn);
var problem = "", profile = null, form = null, wrong = "";
var fields = [
    { name: "OrvoApps", attribute: "OrvoApps", label: "Applications", kind: "numbers",
      hint: "Their numbers: 1 is the shop, 10 its administration" },
    { name: "LanguageID", attribute: "LanguageID", label: "Language", kind: "text", most: 16, hint: "Such as en" },
    { name: "OrvoRoles", attribute: "OrvoRole", label: "Roles", kind: "roles" }
];

// Those whose `attribute` names this profile.
function having(attribute, after, size) {
    var criteria = [attribute + "=" + escapedForFilter(cn)];
    if (after) criteria.push("cn>=" + escapedForFilter(after));
    return members.GetOrvoUsers(criteria, "", size);
}

var deeds = {
    save: function () {
        var failed = saved(form, profile);
        if (!failed) goOn(self, "The profile has been saved.");
        return failed;
    },
    add: function () {
        if (posted("member") == "") {
            wrong = "A user name is needed.";
            return "Nobody has been added.";
        }
        try {
            var user = bound("User", posted("member")), former = user.ProfileCN;
        } catch (error) {
            if (error.number != missing) throw error;
            wrong = "There is no such member, or the member's profile is not there.";
            return "Nobody has been added.";
        }
        if (former == cn) {
            wrong = user.CN + " is a member of this profile already.";
            return "Nobody has been added.";
        }
        if (former != "" && posted("former") != former) return move(user.CN, former);
        user.ProfileCN = cn;
        goOn(self, user.CN + " has been added.");
    },
    drop: function () {
        var user = bound("User", posted("member"));
        if (user.ProfileCN != cn) return user.CN + " is no member of this profile any more.";
        user.ClearAttribValue("ProfileCN");
        goOn(self, user.CN + " has been taken out.");
    },
    remove: function () {
        // The component asks, too, but does not find members of a profile with an apostrophe.
        if (!having("ProfileCN", "", 1).EOF || !having("LocalAdminProfileCN", "", 1).EOF ||
            !Server.CreateObject("OrvoMembership.Profiles").DeleteProfile(cn))
            return cn + " is in use: members have this profile. It has not been deleted.";
        goOn("profiles.asp", cn + " has been deleted.");
    }
};
// Asks before a member leaves another profile for this one.
function move(name, former) {
    head("Move " + name); %>
<form class="card" method="post" action="<%= html(self) %>">
<%= tokenField() %>
<input type="hidden" name="member" value="<%= html(name) %>">
<input type="hidden" name="former" value="<%= html(former) %>">
<p><%= html(name) %> has the profile <%= html(former) %>, and would have <%= html(cn) %> instead.</p>
<div class="bar"><button name="do" value="add">Move</button>
<a class="button plain" href="<%= html(self) %>">Cancel</a></div>
</form>
<%  foot();
    Response.End();
}

try {
    profile = bound("Profile", cn);
    form = formOf(fields, profile);
} catch (error) {
    problem = error.number == missing ? "There is no such profile." : explained(error);
    if (isSent(fields) && error.number != missing) form = formOf(fields);
}
if (isPost() && profile) {
    try {
        problem = !isOwnForm() ? staleForm
            : deeds[deeds.hasOwnProperty(posted("do")) ? posted("do") : "save"]();
    } catch (error) {
        problem = explained(error);
    }
} else if (profile && asked("ask") == "remove") {
    confirmation("Delete " + cn, "The profile " + cn + " will be gone for good.", self, "remove", "Delete", self);
}

var rows = [], next = "", admins = [];
try {
    if (profile) {
        for (var page = having("ProfileCN", after, 20); !page.EOF; page.MoveNext()) rows.push(rowOf(page));
        if (rows.length == 20) next = members.GetLastPageValue();
        for (var list = having("LocalAdminProfileCN", "", 1000); !list.EOF; list.MoveNext())
            admins.push(memberLink(list.Fields.Item("cn").Value));
    }
} catch (error) {
    problem = problem || explained(error);
}
var shown = form ? problemOf(form, problem) : problem;
if (wrong) shown.fields.push({ id: "f-member", text: wrong });
head(cn, shown);
%>
<p><a href="profiles.asp">All profiles</a></p>
<% if (form) { %>
<form class="card" method="post" action="<%= html(self) %>" novalidate>
<h2>What it gives to its members</h2>
<%= tokenField() %>
<div class="columns"><% drawFields(form, ["OrvoApps", "LanguageID"]); %></div>
<% drawFields(form, ["OrvoRoles"]); %>
<div class="bar"><button name="do" value="save">Save</button>
<a class="button plain" href="<%= html(self) %>&amp;ask=remove">Delete this profile</a></div>
</form>
<% }
   if (profile) { %>
<div class="card">
<h2>Members</h2>
<form class="bar" method="post" action="<%= html(self) %>" novalidate>
<%= tokenField() %>
<% drawInput("member", "Add a member", "autocomplete=\"off\" required value=\"" + (wrong ? html(posted("member")) : "") + "\"", wrong); %>
<button name="do" value="add">Add</button>
</form>
<% if (rows.length) { %>
<table id="members" role="table">
<%= heads(["User name", "First name", "Last name", "Take out"]) %>
<tbody role="rowgroup">
<% for (var i = 0; i < rows.length; i++) { var row = rows[i]; %>
<tr role="row"><%= cell("User name", memberLink(row.cn)) %><%= cell("First name", html(row.first)) %><%= cell("Last name", html(row.last)) %>
<td role="cell" data-title="Take out"><form method="post" action="<%= html(self) %>"><%= tokenField() %><input type="hidden" name="member" value="<%= html(row.cn) %>"><button class="quiet" name="do" value="drop" aria-label="Take out <%= html(row.cn) %>">Take out</button></form></td></tr>
<% } %>
</tbody>
</table>
<% } else { %><p id="nobody">Nobody has this profile.</p><% }
   if (after || next) { %>
<nav class="pages" aria-label="Pages"><% if (after) { %><a href="<%= html(self) %>">From the beginning</a><% } %>
<% if (next) { %><a id="next" href="<%= html(self) %>&amp;after=<%= Server.URLEncode(next) %>">Next page</a><% } %></nav>
<% }
   if (admins.length) { %><p>Local administrators: <span id="admins"><%= admins.join(", ") %></span></p><% } %>
</div>
<% } %>
<% foot(); %>
