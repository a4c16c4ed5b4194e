// Every property of a user, by name: what it reads, takes, stores and falls back to.

var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(siteFile);
var user = new ActiveXObject("OrvoMembership.User");
user.setServerInfo(siteFile);
user.BindAs("jsmith", info.GetMemScriptUser(), info.GetMemScriptCode());

// What is stored, as an entry that is bound anew sees it.
function stored(attribute) {
    var entry = new ActiveXObject("OrvoMembership.LdapAccess");
    entry.BindAs("cn=jsmith", info.GetMemScriptUser(), info.GetMemScriptCode(),
                 info.GetServerName(), info.GetUserContainer());
    return entry.GetAttribValue(attribute);
}

// A value of a property's type that only the property's row has.
function sample(row, type) {
    switch (type) {
    case "text":  // two letters, for the country
        return String.fromCharCode(65 + Math.floor(row / 26), 65 + row % 26);
    case "int16":
        return 1000 + row;
    case "int32":
        return 100000 + row;
    case "currency":
        return 1000.25 + row;
    }
    throw new Error("no sample of " + type);
}

function testScalar(name, row, type, attribute, fallsBack) {
    var before = user[name];
    equal(name + ", type", typeof before, type == "text" ? "string" : "number");
    var value = sample(row, type);
    user[name] = value;
    equal(name + ", written", user[name], value);
    if (type != "currency") equal(name + ", stored", stored(attribute), value);

    var none = type == "text" ? "" : 0;
    user[name] = none;
    equal(name + ", without a value", user[name], fallsBack ? user.Profile[name] : none);
    if (type == "text") equal(name + ", cleared", typeof stored(attribute), "undefined");

    user[name] = before;
    equal(name + ", restored", user[name], before);
}

function testBoolean(name, attribute) {
    var before = user[name];
    equal(name + ", type", typeof before, "boolean");
    user[name] = !before;
    equal(name + ", written", user[name], !before);
    equal(name + ", stored", stored(attribute), before ? 0 : 1);
    user[name] = before;
    equal(name + ", restored", user[name], before);
    equal(name + ", stored again", stored(attribute), before ? 1 : 0);
}

// Not every script engine has dates of this kind, but each can hand one on: as an amount it is the
// number of days.
function daysOf(name) {
    user.SpendLimit = user[name];
    return user.SpendLimit;
}

function testDate(name) {
    var limit = user.SpendLimit;
    var before = daysOf(name);
    user[name] = before + 181;
    equal(name + ", written", daysOf(name), before + 181);
    user[name] = before;
    user[name] = user[name];
    equal(name + ", restored", daysOf(name), before);
    user.SpendLimit = limit;
}

// A script makes no arrays, so one that another property reads is written.
function otherArray(name) {
    for (var row = 0; row < catalogue.length; ++row)
        if (catalogue[row][1] == "array" && textsOf(user[catalogue[row][0]]) != textsOf(user[name]))
            return catalogue[row][0];
    throw new Error("every array is the same");
}

function testArray(name, attribute, fallsBack) {
    var before = user[name];
    var texts = textsOf(before);
    var other = otherArray(name);
    var expected = textsOf(user[other]);
    user[name] = user[other];
    equal(name + ", written", textsOf(user[name]), expected);
    equal(name + ", stored", textsOf(user.GetAttribValue(attribute)), expected);
    if (fallsBack) {
        user.ClearAttribValue(attribute);
        equal(name + ", without a value", textsOf(user[name]),
              textsOf(user.Profile[name == "OrvoRoles" ? "Roles" : name]));
    }
    user[name] = before;
    equal(name + ", restored", textsOf(user[name]), texts);
    equal(name + ", stored again", textsOf(user.GetAttribValue(attribute)), texts);
}

function testUserType(name, type) {
    user[name] = false;  // makes the user one all the same
    equal(name + ", number", user.OrvoUserType, type);
    for (var row = 0; row < userTypes.length; ++row)
        equal(name + ", asked for " + userTypes[row][0], user[userTypes[row][0]],
              userTypes[row][0] == name);
}

function testRole(name, role) {
    var before = user[name];
    equal(name + ", type", typeof before, "boolean");
    equal(name + ", by number", user.HasRole(role), before);
    user[name] = !before;
    equal(name + ", written", user[name], !before);
    equal(name + ", written, by number", user.HasRole(role), !before);
    user[name] = before;
    equal(name + ", restored", user[name], before);
}

for (var row = 0; row < catalogue.length; ++row) {
    var name = catalogue[row][0], type = catalogue[row][1], attribute = catalogue[row][2];
    var fallsBack = catalogue[row][3];
    try {
        if (type == "boolean") testBoolean(name, attribute);
        else if (type == "date") testDate(name);
        else if (type == "array") testArray(name, attribute, fallsBack);
        else testScalar(name, row, type, attribute, fallsBack);
    } catch (error) {
        fail(name, error.number + " " + error.description, "no failure");
    }
}

var typeBefore = user.OrvoUserType;
for (var row = 0; row < userTypes.length; ++row) testUserType(userTypes[row][0], userTypes[row][1]);
user.OrvoUserType = typeBefore;

var rolesBefore = user.Roles;
for (var row = 0; row < userRoles.length; ++row) testRole(userRoles[row][0], userRoles[row][1]);
equal("an invoice user has no credit card", user.InvoiceUser, !user.CreditCardUser);
user.InvoiceUser = !user.InvoiceUser;
equal("and the other way round", user.InvoiceUser, !user.CreditCardUser);
user.Roles = rolesBefore;
equal("roles, restored", textsOf(user.Roles), textsOf(rolesBefore));

end();
