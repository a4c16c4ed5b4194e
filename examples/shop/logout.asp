<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
if (isPost() && isOwnForm()) {
    endLogin();
    Session.Abandon();
    Response.Redirect("/");
}
// A session that has ended, or one that cannot be reached at the moment: somebody who is logged in is
// not told that it is done.
if (!isPost() || String(Request.Cookies("QUENDRAID")) == "") Response.Redirect("/");
head("Log out", "You have not been logged out just now. If this page shows your name, please try again.");
%>
<p class="bar"><a class="button" href="/">To the start</a></p>
<% foot(); %>
