<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<!-- #include virtual="/parts/form.inc" -->
<%
// For who is logged in, and for who has just come from the login page with a password that is right
// but has expired or has to be changed. So the session knows the password, and what is typed is held
// against that. Nobody else is let in: here names cannot be tried, and no account can be locked.
var here = isLoggedIn();
var user = String((here ? Session("REMOTE_USER") : Session("ChangeUser")) || "");
var known = String((here ? Session("REMOTE_PASSWORD") : Session("ChangePassword")) || "");
if (user == "") Response.Redirect("/login.asp?url=%2Fpassword.asp");

var problem = "", wrong = {}, mostTries = 5;

// What is wrong with what has been typed, by the name of the field.
function look() {
    if (posted("old") != known) wrong.old = "The current password is not correct.";
    else if (posted("new") == "") wrong["new"] = "The new password is empty.";
    else if (posted("new") != posted("again")) wrong.again = "The new password is not the same twice.";
    if (!wrong.old) return;
    // Somebody else may sit at this browser.
    var tries = Number(Session("WrongPasswords") || 0) + 1;
    Session("WrongPasswords") = tries;
    if (tries >= mostTries) leave("That were too many attempts. Please log in again.");
}
function leave(why) {
    endLogin();
    Session("Done") = why;
    Response.Redirect("/login.asp");
}
function change() {
    var validator = Server.CreateObject("OrvoMembership.Validator");
    validator.ChangePassword(user, known, posted("new"));
    var done = "Your password has been changed.";
    if (!here) {
        endLogin();
        goOn("/login.asp", done + " Please log in with the new one.");
    }
    Session.Contents.Remove("WrongPasswords");
    // The change has ended the user's other logins. This one goes on; session and filter still know
    // the old password.
    Session("REMOTE_PASSWORD") = posted("new");
    validator.ValidateCredentials(user, posted("new"), "");
    goOn("/account/", done);
}

if (isPost()) {
    if (!isOwnForm()) {
        problem = staleForm;
    } else {
        look();
        try {
            for (var name in wrong) problem = wrong[name];
            if (!problem) change();
        } catch (error) {
            // The password has been changed elsewhere, or the account is locked or gone.
            if (error.number == notCorrect || error.number == missing)
                leave("The directory does not accept your password any more. Please log in again.");
            problem = explained(error);
            if (error.number == refused) wrong["new"] = problem;
        }
    }
}
var fields = [];
for (var name in wrong) fields.push({ id: "f-" + name, text: wrong[name] });
head("Change password", fields.length ? { text: "Your password has not been changed.", fields: fields } : problem);
%>
<form class="card narrow" method="post" action="/password.asp" novalidate>
<%= tokenField() %>
<% if (!here) { %><p>For the account of <b><%= html(user) %></b>.</p><% } %>
<input type="hidden" name="username" autocomplete="username" value="<%= html(user) %>">
<% drawInput("old", "Current password", "type=\"password\" autocomplete=\"current-password\" required", wrong.old); %>
<% drawInput("new", "New password", "type=\"password\" autocomplete=\"new-password\" required", wrong["new"]); %>
<% drawInput("again", "New password again", "type=\"password\" autocomplete=\"new-password\" required", wrong.again); %>
<button>Change password</button>
</form>
<% foot(); %>
