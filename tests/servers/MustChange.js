// `mustchange` has a password that somebody else has set, and has to change it.

var validator = new ActiveXObject("OrvoMembership.Validator");
validator.setServerInfo(siteFile);
equal("to be changed", validator.ValidatePassword("mustchange", "shop-sample"), -4);
equal("wrong all the same", validator.ValidatePassword("mustchange", "guessed"), -1);
validator.ChangePassword("mustchange", "shop-sample", "own-sample");
equal("changed", validator.ValidatePassword("mustchange", "own-sample"), 0);
equal("the former one", validator.ValidatePassword("mustchange", "shop-sample"), -1);

end();
