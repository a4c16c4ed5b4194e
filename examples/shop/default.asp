<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<% head("Welcome"); %>
<div class="card">
<% if (isLoggedIn()) { %>
<p>You are logged in as <b><%= html(Session("REMOTE_USER")) %></b>.</p>
<p class="bar">
<% if (mayUse(1)) { %><a class="button" href="/account/">My account</a><% } %>
<% if (mayUse(10)) { %><a class="button" href="/admin/members.asp">Members</a><% } %>
</p>
<% } else { %>
<p>Buyers, approvers and administrators of the shop keep their accounts here.</p>
<p><a class="button" href="/login.asp">Log in</a></p>
<% } %>
</div>
<% foot(); %>
