<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
if (isPost() && isOwnForm()) {
    if (isLoggedIn())
        Application("TavikAuthFilter.Connector").Logout(Session("QUENDRAID"));
    Session.Abandon();
}
Response.Redirect("/");
%>
