<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
var problem = "", mustChange = false;
// Where to go afterwards: the page that was asked for, if it is one of this site.
var url = Server.LocalURL(asked("url"), "");

if (isPost() && Request.Form("user").Count == 0) {
    keepForm(url);
    Response.Redirect("/login.asp?url=" + Server.URLEncode(url));
} else if (isPost()) {
    if (!isOwnForm()) {
        problem = staleForm;
    } else {
        var kept = Session("KeptForm");
        forgetLogin();
        if (kept) Session("KeptForm") = kept;
        try {
            var validator = Server.CreateObject("OrvoMembership.Validator");
            var result = validator.ValidateCredentials(posted("user"), posted("password"), url);
            if (result < 0) {
                problem = refusal(result);
                mustChange = result == -4;
                // Who has proved to know the former password may choose a new one.
                if (mustChange) {
                    Session("ChangeUser") = posted("user");
                    Session("ChangePassword") = posted("password");
                }
            } else if (isLoggedIn()) {
                Response.Redirect(url || (mayUse(1) ? "/account/" : "/admin/members.asp"));
            } else {
                endLogin();
                problem = "Your password is right, but your account may not use any application here.";
            }
        } catch (error) {
            problem = explained(error);
        }
    }
} else if (url != "" && isLoggedIn()) {
    problem = "Your account may not open this page. You can log in with another one.";
} else if (url != "" && hasKeptForm(url) && isKeptForVisitor()) {
    problem = "Your login has ended. Please log in again: what you typed is kept, but for passwords.";
} else if (url != "" && Session("QUENDRAID")) {
    problem = "Your login has ended. Please log in again.";
}
head("Log in", problem);
%>
<% if (mustChange) { %>
<p class="card narrow"><a class="button" href="/password.asp">Choose a new password</a></p>
<% } else { %>
<form class="card narrow" method="post" action="/login.asp?url=<%= Server.URLEncode(url) %>">
<%= tokenField() %>
<div class="field">
<label for="f-user">User name</label>
<input id="f-user" name="user" autocomplete="username" required<%= problem ? "" : " autofocus" %> value="<%= html(posted("user")) %>">
</div>
<div class="field">
<label for="f-password">Password</label>
<input id="f-password" name="password" type="password" autocomplete="current-password" required>
</div>
<div class="bar"><button>Log in</button></div>
</form>
<% } %>
<% foot(); %>
