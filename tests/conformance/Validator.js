// Passwords, right and wrong.

var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(siteFile);
var validator = new ActiveXObject("OrvoMembership.Validator");
validator.setServerInfo(siteFile);

equal("right", validator.ValidatePassword("glee", "shop-sample"), 0);
equal("right, with the naming attribute", validator.ValidatePassword("cn=glee", "shop-sample"), 0);
equal("wrong", validator.ValidatePassword("glee", "shop-Sample"), -1);
equal("empty", validator.ValidatePassword("glee", ""), -1);
equal("right up to a NUL", validator.ValidatePassword("glee", "shop-sample\0more"), -1);
equal("empty up to a NUL", validator.ValidatePassword("glee", "\0shop-sample"), -1);
equal("nobody", validator.ValidatePassword("nobody", "shop-sample"), -1);
equal("without a password of its own", validator.ValidatePassword("barest", "shop-sample"), -1);
equal("beside the container",
      validator.ValidatePassword(info.GetMemScriptUser(), info.GetMemScriptCode()), -1);

// A password that was changed, and an account that three wrong ones lock.
var newcomer = new ActiveXObject("OrvoMembership.LdapAccess");
newcomer.BindAs("cn=newcomer", info.GetMemScriptUser(), info.GetMemScriptCode(),
                info.GetServerName(), info.GetUserContainer());
newcomer.SetAttribValue("userPassword", "gr\u00FC\u00DF-sample");
equal("a new one", validator.ValidatePassword("newcomer", "gr\u00FC\u00DF-sample"), 0);
equal("the former one", validator.ValidatePassword("newcomer", "shop-sample"), -1);
equal("wrong again", validator.ValidatePassword("newcomer", "wrong"), -1);
equal("wrong a third time", validator.ValidatePassword("newcomer", "wrong"), -1);
equal("locked", validator.ValidatePassword("newcomer", "gr\u00FC\u00DF-sample"), -2);

end();
