<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<%
var title = "My account", message = "";
var user = opened("OrvoMembership.User", title);

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
                // Lists of members have columns of 255 characters.
                if (posted(name).length > 255) throw new Error("this is too long");
                if (posted(name) != String(user[name])) user[name] = posted(name);
            }
            label = "Out of office";
            var isAway = posted("OutOfOfficeOn") == "on";
            if (isAway != user.OutOfOfficeOn) user.OutOfOfficeOn = isAway;
            goOn("/account/", "Your account has been saved.");
        } catch (error) {
            message = label + ": " + explained(error);
        }
    }
}
// What a field shows: what was sent, or else the property.
function shown(name) {
    return html(isPost() ? posted(name) : user[name]);
}

var roles = [];
for (var i = 0; i < roleNames.length; i++)
    if (user.HasRole(roleNames[i][0])) roles.push(roleNames[i][1]);
var profile = user.Profile;
var expiry = new Date(user.CreditCardExpiryDate);
head(title, message);
%>
<div class="card">
<h2>What the shop knows about you</h2>
<dl>
<dt>User name</dt><dd id="cn"><%= html(user.CN) %></dd>
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
    value="<%= shown(fields[i][0]) %>"></label>
<% } %>
</div>
<p><label class="tick"><input name="OutOfOfficeOn" type="checkbox"<%= (isPost() ? posted("OutOfOfficeOn") == "on" : user.OutOfOfficeOn) ? " checked" : "" %>>
I am out of office</label></p>
<div class="bar"><button>Save</button><a href="/password.asp">Change password</a></div>
</form>
<% foot(); %>
