<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
var title = "My account", message = "", done = "";

// Created in a page, the user binds itself with the session's login.
var user = Server.CreateObject("OrvoMembership.User");

// What everybody may change of the own entry: property, words, kind of field.
var fields = [
    ["FirstName", "First name", "text"], ["LastName", "Last name", "text"],
    ["EMailAddress", "E-mail", "email"], ["PhoneNumber", "Phone", "tel"], ["Fax", "Fax", "tel"],
    ["Position", "Position", "text"], ["Country", "Country", "text"],
    ["DeliveryAddressID", "Delivery address", "number"],
    ["SubstituteBuyer", "Substitute while away", "text"]
];

if (isPost()) {
    if (!isOwnForm()) {
        message = staleForm;
    } else {
        var label = "";
        try {
            for (var i = 0; i < fields.length; i++) {
                var name = fields[i][0];
                label = fields[i][1];
                if (posted(name) != String(user[name])) user[name] = posted(name);
            }
            label = "Out of office";
            user.OutOfOfficeOn = posted("OutOfOfficeOn") == "on";
            done = "Your account has been saved.";
        } catch (error) {
            message = label + ": " + explained(error);
        }
    }
}

var roles = [];
for (var i = 0; i < roleNames.length; i++)
    if (user.HasRole(roleNames[i][0])) roles.push(roleNames[i][1]);
var profile = user.Profile;
var expiry = new Date(user.CreditCardExpiryDate);
%>
<!-- #include virtual="/parts/head.inc" -->
<div class="card">
<h2>What the shop knows about you</h2>
<dl>
<dt>User name</dt><dd><%= html(user.CN) %></dd>
<dt>Kind of account</dt><dd><%= html(userTypes[user.OrvoUserType]) %></dd>
<dt>Profile</dt><dd><%= profile ? html(profile.CN) : "none" %></dd>
<dt>Roles</dt><dd id="roles"><%= html(roles.join(", ") || "none") %></dd>
<dt>Applications</dt><dd><%= html(new VBArray(user.OrvoApps).toArray().join(", ")) %></dd>
<dt>Spend limit</dt><dd id="limit"><%= amount(user.SpendLimit) %></dd>
<dt>Credit card valid until</dt><dd><%= expiry.getFullYear() > 1900 ? html((expiry.getMonth() + 1) + "/" + expiry.getFullYear()) : "no card" %></dd>
</dl>
</div>
<form class="card" method="post">
<h2>What you can change</h2>
<%= tokenField() %>
<div class="columns">
<% for (var i = 0; i < fields.length; i++) { %>
<label><%= fields[i][1] %> <input name="<%= fields[i][0] %>" type="<%= fields[i][2] %>"
    value="<%= html(user[fields[i][0]]) %>"></label>
<% } %>
</div>
<p><label class="tick"><input name="OutOfOfficeOn" type="checkbox"<%= user.OutOfOfficeOn ? " checked" : "" %>>
I am out of office</label></p>
<button>Save</button>
<p><a href="/password.asp">Change password</a></p>
</form>
<!-- #include virtual="/parts/foot.inc" -->
