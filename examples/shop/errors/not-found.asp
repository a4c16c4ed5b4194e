<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
Response.Status = "404 Not Found";
head("Not found");
%>
<div class="card">
<p>There is no page at this address. It may have moved, or the address may have been mistyped.</p>
<p><a class="button" href="/">To the start</a></p>
</div>
<% foot(); %>
