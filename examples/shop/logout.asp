<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
if (isPost() && isOwnForm()) {
    endLogin();
    Session.Abandon();
}
Response.Redirect("/");
%>
