<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
// One member: without a name in the query, a new one.
var cn = asked("cn"), isNew = cn == "";
var title = isNew ? "New member" : cn, message = "", done = asked("done");

var texts = [["FirstName", "First name"], ["LastName", "Last name"], ["EMailAddress", "E-mail"],
             ["PhoneNumber", "Phone"], ["Position", "Position"], ["CompanyName", "Company"]];
var limits = [["SpendLimit", "Spend limit"], ["ApproverLimit", "Approver limit"]];
var account = String(Session("REMOTE_ACCOUNT")), password = String(Session("REMOTE_PASSWORD"));
var label = "";

// The numbers of a list like "1, 2"; a lone 0 says "none of one's own".
function numbersIn(text) {
    var numbers = [];
    text.replace(/-?\d+/g, function (number) { numbers.push(Number(number)); });
    return numbers;
}
function chosenRoles() {
    var chosen = [];
    for (var i = 0; i < roleNames.length; i++)
        if (posted("role" + roleNames[i][0]) == "on") chosen.push(roleNames[i][0]);
    return chosen.length ? chosen : [0];
}

function bound(name) {
    var user = Server.CreateObject("OrvoMembership.User");
    user.BindAs(name, account, password);
    return user;
}

function save(user) {
    for (var i = 0; i < texts.length; i++) {
        label = texts[i][1];
        if (posted(texts[i][0]) != user[texts[i][0]]) user[texts[i][0]] = posted(texts[i][0]);
    }
    for (var i = 0; i < limits.length; i++) {
        label = limits[i][1];
        var limit = posted(limits[i][0]).replace(/[\s\u2009]/g, "");
        if (limit != "" && limit != String(user[limits[i][0]])) {
            if (!/^\d+(\.\d{1,4})?$/.test(limit)) throw new Error("this is no amount");
            user[limits[i][0]] = Number(limit);
        }
    }
    label = "Kind of account";
    user.OrvoUserType = Number(posted("type")) || 0;
    label = "Profile";
    if (posted("profile") != user.ProfileCN) user.ProfileCN = posted("profile");
    label = "Roles";
    user.OrvoRoles = chosenRoles();
    label = "Applications";
    var applications = numbersIn(posted("apps"));
    if (applications.length) user.OrvoApps = applications;
    else user.ClearOrvoApps();
}

if (isPost()) {
    if (!isOwnForm()) {
        message = staleForm;
    } else {
        try {
            var members = Server.CreateObject("OrvoMembership.Members");
            if (posted("delete") != "") {
                label = "Delete";
                members.DeleteUser(cn);
                Response.Redirect("members.asp?done=" + Server.URLEncode(cn + " has been deleted."));
            }
            if (isNew) {
                label = "User name";
                cn = posted("cn");
                if (cn == "") throw new Error("a user name is needed");
                if (posted("password") == "") { label = "Password"; throw new Error("a password is needed"); }
                members.CreateUser(cn, posted("password"));
            }
            save(bound(cn));
            Response.Redirect("member.asp?cn=" + Server.URLEncode(cn) + "&done=" +
                              Server.URLEncode(isNew ? "The member has been created." : "The member has been saved."));
        } catch (error) {
            message = label + ": " + explained(error);
        }
    }
}

var user = null, ownRoles = {}, ownApps = [];
if (!isNew) {
    try {
        user = bound(cn);
        var roles = new VBArray(user.GetAttribValue("OrvoRole")).toArray();
        for (var i = 0; i < roles.length; i++) ownRoles[roles[i]] = true;
        var apps = new VBArray(user.GetAttribValue("OrvoApps")).toArray();
        for (var i = 0; i < apps.length; i++) if (apps[i]) ownApps.push(apps[i]);
    } catch (error) {
        message = message || explained(error);
    }
}
// What a field shows: what was sent, or else the property.
function value(field, property) {
    return isPost() ? posted(field) : user ? user[property || field] : "";
}
var profiles = Server.CreateObject("OrvoMembership.Profiles").AsRecordset();
%>
<!-- #include virtual="/parts/head.inc" -->
<% if (isNew || user) { %>
<form class="card" method="post">
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
<% var chosen = value("profile", "ProfileCN"); %><%= option("", "none", chosen) %>
<% for (; !profiles.EOF; profiles.MoveNext()) { var profile = profiles.Fields.Item("cn").Value; %><%= option(profile, profile, chosen) %><% } %>
</select></label>
<label>Applications of one's own <input name="apps" placeholder="those of the profile"
    value="<%= html(isPost() ? posted("apps") : ownApps.join(", ")) %>"></label>
</div>
<h2>Roles of one's own</h2>
<p>
<% for (var i = 0; i < roleNames.length; i++) { var role = roleNames[i][0]; %>
<label class="tick"><input type="checkbox" name="role<%= role %>"<%= (isPost() ? posted("role" + role) == "on" : ownRoles[role]) ? " checked" : "" %>> <%= roleNames[i][1] %></label>
<% } %>
</p>
<button>Save</button>
</form>
<% } %>
<% if (user) { %>
<form method="post"><%= tokenField() %><button class="danger" name="delete" value="yes">Delete <%= html(cn) %></button></form>
<% } %>
<!-- #include virtual="/parts/foot.inc" -->
