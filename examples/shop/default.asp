<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<% var title = "Welcome", message = "", done = ""; %>
<!-- #include virtual="/parts/head.inc" -->
<div class="card">
<% if (mayUse(1)) { %>
<p>You are logged in as <b><%= html(Session("REMOTE_USER")) %></b>.</p>
<p><a class="button" href="/account/">My account</a></p>
<% } else { %>
<p>Buyers, approvers and administrators of the shop keep their accounts here.</p>
<p><a class="button" href="/login.asp?url=/account/">Log in</a></p>
<% } %>
</div>
<!-- #include virtual="/parts/foot.inc" -->
