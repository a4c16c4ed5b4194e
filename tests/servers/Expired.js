// `expired` has a password that has expired, and cannot log in to change it.

var validator = new ActiveXObject("OrvoMembership.Validator");
validator.setServerInfo(siteFile);
equal("expired", validator.ValidatePassword("expired", "shop-sample"), -4);
equal("wrong all the same", validator.ValidatePassword("expired", "guessed"), -1);
validator.ChangePassword("expired", "shop-sample", "own-sample");
equal("changed", validator.ValidatePassword("expired", "own-sample"), 0);
equal("the former one", validator.ValidatePassword("expired", "shop-sample"), -1);

end();
