<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
// Open to everybody: who must choose a new password cannot log in before.
var message = "";
var user = isLoggedIn() ? String(Session("REMOTE_USER")) : posted("user") || asked("user");

if (isPost()) {
    if (!isOwnForm()) message = staleForm;
    else if (posted("new") == "") message = "The new password is empty.";
    else if (posted("new") != posted("again")) message = "The new password is not the same twice.";
    else {
        try {
            var validator = Server.CreateObject("OrvoMembership.Validator");
            // ChangePassword calls every refusal a wrong password.
            var result = validator.ValidatePassword(user, posted("old"));
            if (result < 0 && result != -4) {
                message = refusal(result, "The current password is not correct.");
            } else {
                validator.ChangePassword(user, posted("old"), posted("new"));
                var done = "Your password has been changed.";
                if (!isLoggedIn()) goOn("/login.asp", done + " Please log in with the new one.");
                // Session and filter know the old one; the login goes on with the new one.
                Session("REMOTE_PASSWORD") = posted("new");
                validator.ValidateCredentials(user, posted("new"), "");
                goOn("/account/", done);
            }
        } catch (error) {
            // Who is not there is not told apart from a wrong password.
            message = error.number == -2147016656
                ? "The current password is not correct." : explained(error);
        }
    }
}
head("Change password", message);
%>
<form class="card narrow" method="post" action="/password.asp">
<%= tokenField() %>
<% if (!isLoggedIn()) { %>
<label>User name <input name="user" autocomplete="username" required value="<%= html(user) %>"></label>
<% } %>
<label>Current password <input name="old" type="password" autocomplete="current-password" required></label>
<label>New password <input name="new" type="password" autocomplete="new-password" required></label>
<label>New password again <input name="again" type="password" autocomplete="new-password" required></label>
<button>Change password</button>
</form>
<% foot(); %>
