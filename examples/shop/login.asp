<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
var title = "Log in", message = "", done = "";
var url = Server.LocalURL(asked("url"), "/account/");

function refusal(result) {
    switch (result) {
    case -1: return "User name or password is wrong.";
    case -2: return "This account is locked. Please ask an administrator.";
    case -3: return "This account is disabled. Please ask an administrator.";
    case -4: return "Your password has expired. Please choose a new one under \"Change password\".";
    case -5: return "Too many attempts. Please wait a while and try again.";
    }
    return "The login was refused (" + result + ").";
}

if (isPost()) {
    if (!isOwnForm()) {
        message = staleForm;
    } else {
        try {
            var validator = Server.CreateObject("OrvoMembership.Validator");
            var result = validator.ValidateCredentials(posted("user"), posted("password"), url);
            if (result < 0) message = refusal(result);
            else if (mayUse(1) || mayUse(10)) Response.Redirect(url);
            else message = "Your password is right, but your account may use no application here.";
        } catch (error) {
            message = explained(error);
        }
    }
} else if (asked("url") != "" && isLoggedIn()) {
    message = mayUse(1) || mayUse(10)
        ? "Your account may not open this page. You can log in with another one."
        : "Your login has ended. Please log in again.";
}
%>
<!-- #include virtual="/parts/head.inc" -->
<form class="card narrow" method="post" action="/login.asp?url=<%= Server.URLEncode(url) %>">
<%= tokenField() %>
<label>User name <input name="user" autocomplete="username" autofocus required
    value="<%= html(posted("user")) %>"></label>
<label>Password <input name="password" type="password" autocomplete="current-password" required></label>
<button>Log in</button>
<p><a href="/password.asp">Change password</a></p>
</form>
<!-- #include virtual="/parts/foot.inc" -->
