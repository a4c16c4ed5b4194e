<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
// The reason is not for visitors; the reference is what the log has it under.
Response.Status = "500 Internal Server Error";
var reference = Server.GetLastError().Reference;
head("Something went wrong");
%>
<div class="card">
<p>The page could not be shown. That is our fault, not yours.</p>
<% if (reference) { %><p>If it happens again, please tell us this reference: <code id="reference"><%= html(reference) %></code></p><% } %>
<p><a class="button" href="/">To the start</a></p>
</div>
<% foot(); %>
