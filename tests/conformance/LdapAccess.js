// Reading, writing and clearing attributes of one entry.

var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(siteFile);

function entryOf(name) {
    var entry = new ActiveXObject("OrvoMembership.LdapAccess");
    entry.BindAs(name, info.GetMemScriptUser(), info.GetMemScriptCode(), info.GetServerName(),
                 info.GetUserContainer());
    return entry;
}

var smith = entryOf("cn=jsmith");
equal("a text", smith.GetAttribValue("mail"), "john.smith@shop.example");
equal("a number", smith.GetAttribValue("OrvoUserType"), 1);
equal("names have no case", smith.GetAttribValue("MAIL"), "john.smith@shop.example");
equal("the first of several", entryOf("cn=twomails").GetAttribValue("mail"),
      "first@shop.example");
equal("an attribute that is not there", typeof entryOf("cn=bare").GetAttribValue("Position"),
      "undefined");

var before = smith.GetAttribValue("Position");
var words = "Einkauf \u0416 \uD83D\uDE00, \"senior\"";
smith.SetAttribValue("Position", words);
equal("a written text", smith.GetAttribValue("Position"), words);
equal("what others see of it", entryOf("cn=jsmith").GetAttribValue("Position"), words);
smith.ClearAttribValue("Position");
equal("a cleared attribute", typeof smith.GetAttribValue("Position"), "undefined");
smith.ClearAttribValue("Position");
smith.SetAttribValue("Position", before);
equal("written again", smith.GetAttribValue("Position"), before);

smith.SetAttribValue("OrvoUserType", 2);
equal("a written number", entryOf("cn=jsmith").GetAttribValue("OrvoUserType"), 2);
smith.SetAttribValue("OrvoUserType", "1");
equal("a number written as text", smith.GetAttribValue("OrvoUserType"), 1);

equal("a name with a comma", entryOf("cn=Smith\\, John").GetAttribValue("cn"), "Smith, John");
equal("a name beyond ASCII",
      entryOf("cn=\u0416\u0430\u043D\u043D\u0430 \u0416\u0443\u043A\u043E\u0432\u0430")
          .GetAttribValue("cn"),
      "\u0416\u0430\u043D\u043D\u0430 \u0416\u0443\u043A\u043E\u0432\u0430");

var config = new ActiveXObject("OrvoMembership.LdapAccess");
config.BindToConfig();
equal("the directory's own entry", config.GetAttribValue("cn"), "Directory");
equal("a logical name", config.GetAttributeName("Company"), "CompanyName");
equal("a name that nobody knows", typeof config.GetAttributeName("Nothing"), "undefined");
equal("an attribute by its logical name",
      typeof config.GetAttribValue(config.GetAttributeName("Company")), "string");

end();
