<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<!-- #include virtual="/parts/form.inc" -->
<!-- #include virtual="/parts/members.inc" -->
<%
// One member: without a name in the query, a new one.
var cn = asked("cn"), isNew = cn == "", title = isNew ? "New member" : cn;
var self = "member.asp?cn=" + Server.URLEncode(cn);
var members = opened("OrvoMembership.Members", title);
var problem = "", user = null, form = null, wrong = {};

function namesOf(items) {
    return items.map(function (item) { return [item, item]; });
}
function numbered(items) {
    return items.map(function (item, i) { return [i, item]; });
}
function profileNames() {
    var names = [];
    for (var list = Server.CreateObject("OrvoMembership.Profiles").AsRecordset(); !list.EOF; list.MoveNext())
        names.push(list.Fields.Item("cn").Value);
    return names;
}
function fieldsWith(profiles) {
    return [
        { name: "FirstName", attribute: "givenName", label: "First name", kind: "text" },
        { name: "LastName", attribute: "sn", label: "Last name", kind: "text" },
        { name: "EMailAddress", attribute: "mail", label: "E-mail", kind: "email" },
        { name: "PhoneNumber", attribute: "PhoneNumber", label: "Phone", kind: "phone", most: 64 },
        { name: "Position", attribute: "Position", label: "Position", kind: "text" },
        { name: "CompanyName", attribute: "CompanyName", label: "Company", kind: "text" },
        { name: "SpendLimit", attribute: "SpendLimit", label: "Spend limit", kind: "amount" },
        { name: "ApproverLimit", attribute: "ApproverLimit", label: "Approver limit", kind: "amount" },
        { name: "OrvoUserType", attribute: "OrvoUserType", label: "Kind of account", kind: "choice",
          options: numbered(userTypes) },
        { name: "ProfileCN", attribute: "ProfileCN", label: "Profile", kind: "choice",
          options: [["", "none"]].concat(namesOf(profiles)) },
        { name: "OrvoApps", attribute: "OrvoApps", label: "Own applications", kind: "numbers",
          hint: "Their numbers; without any, those of the profile count" },
        { name: "OrvoRoles", attribute: "OrvoRole", label: "Own roles", kind: "roles",
          hint: "Without any, those of the profile count" }
    ];
}

// Whether this member is who is logged in, who would lock the door from inside.
function isOneself() {
    return Server.CreateObject("OrvoMembership.User").CN == user.CN;
}

// Each of these does what its button says, goes on to another page, or answers what is wrong.
var deeds = {
    create: function () {
        var changes = changesIn(form), name = posted("cn");
        if (name == "") wrong.cn = "A user name is needed.";
        if (posted("password") == "") wrong.password = "A password is needed.";
        if (problems(form) || problems({ errors: wrong })) return "Nobody has been created.";
        try {
            members.CreateUser(name, posted("password"));
        } catch (error) {
            if (error.number == taken) wrong.cn = explained(error);
            if (error.number == refused) wrong.password = explained(error);
            return wrong.cn || wrong.password ? "Nobody has been created." : explained(error);
        }
        var failed;
        try {
            failed = write(form, bound("User", name), changes);
        } catch (error) {
            failed = explained(error);
        }
        if (!failed)
            goOn("member.asp?cn=" + Server.URLEncode(name), "The member has been created.");
        try {
            members.DeleteUser(name);
        } catch (error) {
            return failed + " The new member is there, and could not be removed again.";
        }
        return "Nobody has been created.";
    },
    save: function () {
        var failed = saved(form, user);
        if (!failed) goOn(self, "The member has been saved.");
        return failed;
    },
    remove: function () {
        if (isOneself()) return "This is your own account.";
        members.DeleteUser(cn);
        goOn("members.asp", cn + " has been deleted.");
    },
    unlock: function () {
        user.ClearAttribValue("pwdAccountLockedTime");
        goOn(self, "The account has been unlocked.");
    },
    enable: function () {
        user.ClearAttribValue("pwdAccountLockedTime");
        goOn(self, "The account has been enabled.");
    },
    disable: function () {
        if (isOneself()) return "This is your own account.";
        // The directory's mark for "for good": no time ends it.
        user.SetAttribValue("pwdAccountLockedTime", ["000001010000Z"]);
        goOn(self, "The account has been disabled, which counts where the directory's password policy " +
            "locks accounts.");
    },
    reset: function () {
        if (isOneself()) return "This is your own account.";
        var password = Server.RandomText(16), done = "The password has been replaced.";
        user.SetAttribValue("userPassword", [password]);
        try {
            user.SetAttribValue("pwdReset", [true]);
        } catch (error) {
            done += " The directory does not ask for another one at the next login: " + explained(error);
        }
        // The next page shows it, once.
        Session("NewPasswordOf") = cn;
        Session("NewPassword") = password;
        goOn(self, done);
    }
};

function deedButton(deed, words) {
    return "<form method=\"post\" action=\"" + html(self) + "\">" + tokenField() +
        "<button name=\"do\" value=\"" + deed + "\">" + words + "</button></form>";
}

var isReady = false;
try {
    var fields = fieldsWith([]);
    fields = fieldsWith(profileNames());
    if (!isNew) user = bound("User", cn);
    isReady = true;
    form = formOf(fields, user, { OrvoUserType: "1" });
} catch (error) {
    problem = error.number == missing
        ? "There is no such member, or the member's profile is not there." : explained(error);
    // What has been typed is not lost.
    if (isSent(fields) && error.number != missing) form = formOf(fields);
}
var deed = deeds.hasOwnProperty(posted("do")) ? posted("do") : isNew ? "create" : "save";
if (isPost() && isReady) {
    try {
        problem = isOwnForm() ? deeds[deed]() : staleForm;
    } catch (error) {
        problem = explained(error);
    }
} else if (user && asked("ask") == "remove") {
    confirmation("Delete " + cn, "The entry of " + cn + " will be gone for good.", self, "remove", "Delete", self);
} else if (user && asked("ask") == "reset") {
    confirmation("New password for " + cn, "The present password of " + cn + " will not be accepted any more. " +
        "You will see the new one once, to hand it on.", self, "reset", "Replace password", self);
}

var shown = form ? problemOf(form, problem) : problem;
if (wrong.password) shown.fields.unshift({ id: "f-password", text: "Password: " + wrong.password });
if (wrong.cn) shown.fields.unshift({ id: "f-cn", text: "User name: " + wrong.cn });
head(title, shown);
%>
<p><a href="members.asp">All members</a></p>
<% if (user && Session("NewPasswordOf") == cn) { %>
<div class="card secret">
<h2>New password</h2>
<p><code id="new-password"><%= html(Session("NewPassword")) %></code></p>
<p class="hint">It is shown this once. Hand it to <%= html(cn) %> in a safe way.</p>
</div>
<% }
   Session.Contents.Remove("NewPasswordOf");
   Session.Contents.Remove("NewPassword");
   if (user) {
       var lockedSince = ownValues(user, "pwdAccountLockedTime")[0];
       var state = stateOf(lockedSince, ownValues(user, "pwdReset")[0]); %>
<div class="card">
<h2>Login</h2>
<p id="state"><% if (state == "locked") { %><b class="mark">locked</b> since <%= moment(momentOf(lockedSince)) %><%
   } else if (state) { %><b class="mark"><%= state %></b><% } else { %>Nothing is known against this account.<% } %></p>
<div class="bar">
<% if (state == "locked") { %><%= deedButton("unlock", "Unlock") %><% } %>
<%= state == "disabled" ? deedButton("enable", "Enable") : deedButton("disable", "Disable") %>
<a class="button plain" href="<%= html(self) %>&amp;ask=reset">New password</a>
<a class="button plain" href="<%= html(self) %>&amp;ask=remove">Delete this member</a>
</div>
</div>
<% } %>
<% if (form) { %>
<form class="card" method="post" action="<%= isNew ? "member.asp" : html(self) %>" novalidate>
<h2><%= isNew ? "Who it is" : "Entry" %></h2>
<%= tokenField() %>
<div class="columns">
<% if (isNew) {
       drawInput("cn", "User name", "autocomplete=\"off\" required value=\"" + html(posted("cn")) + "\"", wrong.cn);
       drawInput("password", "Password", "type=\"password\" autocomplete=\"new-password\" required", wrong.password);
   }
   for (var i = 0; i < form.fields.length; i++) if (form.fields[i].kind != "roles") drawField(form, form.fields[i]); %>
</div>
<% drawFields(form, ["OrvoRoles"]); %>
<button name="do" value="<%= isNew ? "create" : "save" %>"><%= isNew ? "Create" : "Save" %></button>
</form>
<% } %>
<% foot(); %>
