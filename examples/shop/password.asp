<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
// Open to everybody: who must choose a new password cannot log in before.
var title = "Change password", message = "", done = "";
var user = isLoggedIn() ? String(Session("REMOTE_USER")) : posted("user");

if (isPost()) {
    if (!isOwnForm()) message = staleForm;
    else if (posted("new") == "") message = "The new password is empty.";
    else if (posted("new") != posted("again")) message = "The new password is not the same twice.";
    else {
        try {
            Server.CreateObject("OrvoMembership.Validator")
                .ChangePassword(user, posted("old"), posted("new"));
            // Later pages bind with what the session knows.
            if (isLoggedIn()) Session("REMOTE_PASSWORD") = posted("new");
            done = "Your password has been changed.";
        } catch (error) {
            // Who is not there is not told apart from a wrong password.
            message = error.number == -2147016656
                ? "The current password is not correct." : explained(error);
        }
    }
}
%>
<!-- #include virtual="/parts/head.inc" -->
<form class="card narrow" method="post">
<%= tokenField() %>
<% if (!isLoggedIn()) { %>
<label>User name <input name="user" autocomplete="username" required value="<%= html(user) %>"></label>
<% } %>
<label>Current password <input name="old" type="password" autocomplete="current-password" required></label>
<label>New password <input name="new" type="password" autocomplete="new-password" required></label>
<label>New password again <input name="again" type="password" autocomplete="new-password" required></label>
<button>Change password</button>
</form>
<!-- #include virtual="/parts/foot.inc" -->
