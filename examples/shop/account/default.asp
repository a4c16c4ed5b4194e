<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<!-- #include virtual="/parts/form.inc" -->
<%
var title = "My account", problem = "", user = null;

// What everybody may change of the own entry.
var fields = [
    { name: "FirstName", attribute: "givenName", label: "First name", kind: "text", fill: "given-name" },
    { name: "LastName", attribute: "sn", label: "Last name", kind: "text", fill: "family-name" },
    { name: "EMailAddress", attribute: "mail", label: "E-mail", kind: "email", fill: "email" },
    { name: "PhoneNumber", attribute: "PhoneNumber", label: "Phone", kind: "phone", most: 64, fill: "tel" },
    { name: "Fax", attribute: "facsimileTelephoneNumber", label: "Fax", kind: "fax" },
    { name: "Position", attribute: "Position", label: "Position", kind: "text", fill: "organization-title" },
    { name: "Country", attribute: "c", label: "Country", kind: "country", fill: "country", hint: "Two letters, such as GB" },
    { name: "DeliveryAddressID", attribute: "DeliveryAddressID", label: "Delivery address", kind: "number", hint: "Its number in the shop's list" },
    { name: "SubstituteBuyer", attribute: "SubstituteBuyer", label: "Substitute while away", kind: "text" },
    { name: "OutOfOfficeOn", attribute: "OutOfOfficeOn", label: "I am out of office", kind: "flag" }
];
// What the card shows. Read before anything is shown: the directory may fail in the middle.
function knownOf(user) {
    var roles = [], profile = user.Profile, expiry = new Date(user.CreditCardExpiryDate);
    for (var i = 0; i < roleNames.length; i++)
        if (user.HasRole(roleNames[i][0])) roles.push(roleNames[i][1]);
    return {
        name: user.CN, kind: userTypes[user.OrvoUserType], profile: profile ? profile.CN : "none",
        roles: roles.join(", ") || "none", applications: new VBArray(user.OrvoApps).toArray().join(", "),
        limit: amount(user.SpendLimit),
        card: expiry.getFullYear() > 1900 ? (expiry.getMonth() + 1) + "/" + expiry.getFullYear() : "no card"
    };
}

var form = isSent(fields) ? formOf(fields) : null, known = null;
try {
    user = Server.CreateObject("OrvoMembership.User");
    form = form || formOf(fields, user);
} catch (error) {
    problem = explained(error);
    // A password that was changed elsewhere is not tried again.
    if (error.number == outdated) endLogin();
}
if (isPost() && user) {
    problem = isOwnForm() ? saved(form, user) : staleForm;
    if (!problem) goOn("/account/", "Your account has been saved.");
}
try {
    if (user) known = knownOf(user);
} catch (error) {
    problem = problem || explained(error);
}

head(title, form ? problemOf(form, problem) : problem);
if (known) {
%>
<div class="card">
<h2>What the shop knows about you</h2>
<dl>
<dt>User name</dt><dd id="cn"><%= html(known.name) %></dd>
<dt>Kind of account</dt><dd><%= html(known.kind) %></dd>
<dt>Profile</dt><dd><%= html(known.profile) %></dd>
<dt>Roles</dt><dd id="roles"><%= html(known.roles) %></dd>
<dt>Applications</dt><dd><%= html(known.applications) %></dd>
<dt>Spend limit</dt><dd id="limit"><%= known.limit %></dd>
<dt>Credit card valid until</dt><dd><%= html(known.card) %></dd>
</dl>
<p class="bar"><a href="/password.asp">Change password</a><a href="/account/logins.asp">My logins</a></p>
</div>
<% } %>
<% if (form) { %>
<form class="card" method="post" action="/account/" novalidate>
<h2>What you can change</h2>
<%= tokenField() %>
<div class="columns">
<% for (var i = 0; i < fields.length; i++) if (fields[i].kind != "flag") drawField(form, fields[i]); %>
</div>
<% drawFields(form, ["OutOfOfficeOn"]); %>
<button>Save</button>
</form>
<% } %>
<% foot(); %>
