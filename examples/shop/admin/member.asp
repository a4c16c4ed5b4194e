<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
// One member: without a name in the query, a new one.
var cn = asked("cn"), isNew = cn == "";
var title = isNew ? "New member" : cn, message = "";

var texts = [["FirstName", "First name"], ["LastName", "Last name"], ["EMailAddress", "E-mail"],
             ["PhoneNumber", "Phone"], ["Position", "Position"], ["CompanyName", "Company"]];
var limits = [["SpendLimit", "Spend limit"], ["ApproverLimit", "Approver limit"]];
var members = opened("OrvoMembership.Members", title);
// What is being done, for the message when it fails.
var label = "";

function bound(name) {
    var user = Server.CreateObject("OrvoMembership.User");
    user.BindAs(name, String(Session("REMOTE_ACCOUNT")), String(Session("REMOTE_PASSWORD")));
    return user;
}

// Numbers of the member's own entry, not those of its profile; 0 says that there are none.
function ownNumbers(user, attribute) {
    var numbers = new VBArray(user.GetAttribValue(attribute)).toArray(), own = [];
    for (var i = 0; i < numbers.length; i++) if (numbers[i]) own.push(Number(numbers[i]));
    return own;
}
function has(numbers, wanted) {
    for (var i = 0; i < numbers.length; i++) if (numbers[i] == wanted) return true;
    return false;
}
// The roles that are ticked, and those of the member that have no box here.
function chosenRoles(before) {
    var chosen = [], known = {};
    for (var i = 0; i < roleNames.length; i++) {
        known[roleNames[i][0]] = true;
        if (posted("role" + roleNames[i][0]) == "on") chosen.push(roleNames[i][0]);
    }
    for (var i = 0; i < before.length; i++) if (!known[before[i]]) chosen.push(before[i]);
    return chosen;
}
function numbersIn(text) {
    var words = text.replace(/,/g, " ").split(" "), numbers = [];
    for (var i = 0; i < words.length; i++) {
        if (words[i] == "") continue;
        if (!/^\d{1,9}$/.test(words[i])) throw new Error("\"" + words[i] + "\" is not a number.");
        numbers.push(Number(words[i]));
    }
    return numbers;
}
// Amounts are shown as they are edited: with a point, without grouping.
function amountIn(text) {
    if (!/^\d{1,15}(\.\d{1,4})?$/.test(text)) throw new Error("\"" + text + "\" is not an amount.");
    return Number(text);
}

// Writes what differs from the entry.
function save(user) {
    for (var i = 0; i < texts.length; i++) {
        var name = texts[i][0];
        label = texts[i][1];
        if (posted(name) != String(user[name])) user[name] = posted(name);
    }
    for (var i = 0; i < limits.length; i++) {
        var name = limits[i][0];
        label = limits[i][1];
        if (posted(name) != "" && posted(name) != String(user[name]))
            user[name] = amountIn(posted(name));
    }
    label = "Kind of account";
    if (posted("type") != String(user.OrvoUserType)) user.OrvoUserType = Number(posted("type"));
    label = "Profile";
    if (posted("profile") != user.ProfileCN) user.ProfileCN = posted("profile");
    label = "Roles";
    var before = ownNumbers(user, "OrvoRole"), roles = chosenRoles(before);
    if (String(roles.sort()) != String(before.sort())) {
        if (roles.length) user.OrvoRoles = roles;
        else user.ClearAttribValue("OrvoRole");
    }
    label = "Applications";
    var applications = numbersIn(posted("apps"));
    if (String(applications) != String(ownNumbers(user, "OrvoApps"))) {
        if (applications.length) user.OrvoApps = applications;
        else user.ClearOrvoApps();
    }
}

function create() {
    label = "User name";
    if (posted("cn") == "") throw new Error("A user name is needed.");
    if (posted("password") == "") {
        label = "Password";
        throw new Error("A password is needed.");
    }
    // What can be wrong without the directory's help is looked at first.
    label = "Applications";
    numbersIn(posted("apps"));
    for (var i = 0; i < limits.length; i++) {
        label = limits[i][1];
        if (posted(limits[i][0]) != "") amountIn(posted(limits[i][0]));
    }
    label = "New member";
    members.CreateUser(posted("cn"), posted("password"));
}

if (isPost()) {
    if (!isOwnForm()) {
        message = staleForm;
    } else {
        try {
            if (posted("delete") != "") {
                label = "Delete";
                members.DeleteUser(cn);
                goOn("members.asp", cn + " has been deleted.");
            }
            var isCreated = isNew;
            if (isNew) {
                create();
                // From here on the member is there, even if something that follows fails.
                cn = title = posted("cn");
                isNew = false;
            }
            save(bound(cn));
            goOn("member.asp?cn=" + Server.URLEncode(cn),
                 isCreated ? "The member has been created." : "The member has been saved.");
        } catch (error) {
            message = label + ": " + explained(error);
        }
    }
}

var user = null, ownRoles = [], ownApps = [], profiles = [];
try {
    for (var list = opened("OrvoMembership.Profiles", title).AsRecordset(); !list.EOF; list.MoveNext())
        profiles.push(list.Fields.Item("cn").Value);
    if (!isNew) {
        user = bound(cn);
        ownRoles = ownNumbers(user, "OrvoRole");
        ownApps = ownNumbers(user, "OrvoApps");
    }
} catch (error) {
    user = null;
    message = message || (error.number == -2147016656
        ? "There is no such member, or the member's profile is not there." : explained(error));
}
// What a field shows: what was sent, or else the property.
function value(field, property) {
    return isPost() ? posted(field) : user ? user[property || field] : "";
}
function isTicked(role) {
    return isPost() ? posted("role" + role) == "on" : has(ownRoles, role);
}
head(title, message);
%>
<p><a href="members.asp">All members</a></p>
<% if (isNew || user) { %>
<form class="card" method="post" action="member.asp<%= isNew ? "" : "?cn=" + Server.URLEncode(cn) %>">
<%= tokenField() %>
<div class="columns">
<% if (isNew) { %>
<label>User name <input name="cn" required value="<%= html(posted("cn")) %>"></label>
<label>Password <input name="password" type="password" autocomplete="new-password" required></label>
<% } %>
<% for (var i = 0; i < texts.length; i++) { %>
<label><%= texts[i][1] %> <input name="<%= texts[i][0] %>" value="<%= html(value(texts[i][0])) %>"></label>
<% } %>
<% for (var i = 0; i < limits.length; i++) { %>
<label><%= limits[i][1] %> <input name="<%= limits[i][0] %>" inputmode="decimal" value="<%= html(value(limits[i][0])) %>"></label>
<% } %>
<label>Kind of account <select name="type">
<% var type = isNew && !isPost() ? 1 : value("type", "OrvoUserType");
   for (var i = 0; i < userTypes.length; i++) { %><%= option(i, userTypes[i], type) %><% } %>
</select></label>
<label>Profile <select name="profile">
<% var chosen = value("profile", "ProfileCN"), isKnown = chosen == ""; %><%= option("", "none", chosen) %>
<% for (var i = 0; i < profiles.length; i++) { isKnown = isKnown || profiles[i] == chosen; %><%= option(profiles[i], profiles[i], chosen) %><% } %>
<% if (!isKnown) { %><%= option(chosen, chosen + " (not there)", chosen) %><% } %>
</select></label>
<label>Own applications <input name="apps" placeholder="those of the profile"
    value="<%= html(isPost() ? posted("apps") : ownApps.join(", ")) %>"></label>
</div>
<fieldset>
<legend>Own roles; without any, those of the profile count</legend>
<% for (var i = 0; i < roleNames.length; i++) { var role = roleNames[i][0]; %>
<label class="tick"><input type="checkbox" name="role<%= role %>"<%= isTicked(role) ? " checked" : "" %>> <%= roleNames[i][1] %></label>
<% } %>
</fieldset>
<button><%= isNew ? "Create" : "Save" %></button>
</form>
<% } %>
<% if (user) { %>
<details class="card">
<summary>Delete this member</summary>
<form method="post" action="member.asp?cn=<%= Server.URLEncode(cn) %>"><%= tokenField() %>
<p>The entry of <b><%= html(cn) %></b> will be gone for good.</p>
<button class="danger" name="delete" value="yes">Delete</button></form>
</details>
<% } %>
<% foot(); %>
