<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
var message = "", mustChange = false;
// Where to go afterwards: the page that was asked for, if it is one of this site.
var url = Server.LocalURL(asked("url"), "");

if (isPost()) {
    if (!isOwnForm()) {
        message = staleForm;
    } else {
        forgetLogin();
        try {
            var validator = Server.CreateObject("OrvoMembership.Validator");
            var result = validator.ValidateCredentials(posted("user"), posted("password"), url);
            if (result < 0) {
                message = refusal(result, "User name or password is wrong.");
                mustChange = result == -4;
            } else if (isLoggedIn()) {
                Response.Redirect(url || (mayUse(1) ? "/account/" : "/admin/members.asp"));
            } else {
                endLogin();
                message = "Your password is right, but your account may not use any application here.";
            }
        } catch (error) {
            message = explained(error);
        }
    }
} else if (url != "" && isLoggedIn()) {
    message = "Your account may not open this page. You can log in with another one.";
} else if (url != "" && Session("QUENDRAID")) {
    message = "Your login has ended. Please log in again.";
}
head("Log in", message);
%>
<% if (mustChange) { %>
<p class="card narrow"><a class="button" href="/password.asp?user=<%= Server.URLEncode(posted("user")) %>">Choose a new password</a></p>
<% } else { %>
<form class="card narrow" method="post" action="/login.asp?url=<%= Server.URLEncode(url) %>">
<%= tokenField() %>
<label>User name <input name="user" autocomplete="username" autofocus required
    value="<%= html(posted("user")) %>"></label>
<label>Password <input name="password" type="password" autocomplete="current-password" required></label>
<div class="bar"><button>Log in</button><a href="/password.asp">Change password</a></div>
</form>
<% } %>
<% foot(); %>
