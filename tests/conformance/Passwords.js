// Users change their password, with the old one. They are in no other script: under Wine all scripts
// work with one directory.

var info = new ActiveXObject("OrvoMembership.ServerInfo");
info.SetConfiguration(siteFile);
var validator = new ActiveXObject("OrvoMembership.Validator");
validator.setServerInfo(siteFile);

// By name, as somebody who is not logged in.
validator.ChangePassword("bgreen", "shop-sample", "gr\u00FC\u00DF-sample");
equal("the new one", validator.ValidatePassword("bgreen", "gr\u00FC\u00DF-sample"), 0);
equal("the former one", validator.ValidatePassword("bgreen", "shop-sample"), -1);
validator.ChangePassword("bgreen", "gr\u00FC\u00DF-sample", "third-sample");
equal("the next one", validator.ValidatePassword("bgreen", "third-sample"), 0);

raisesLike("a wrong old one", 0x80040325 | 0, /DESC: The current password is not correct\./,
           function () { validator.ChangePassword("bgreen", "guessed", "fourth-sample"); });
raisesLike("an empty new one", 0x8007202F | 0, /DESC: \(19\) .* A new password cannot be empty\./,
           function () { validator.ChangePassword("bgreen", "third-sample", ""); });
raisesLike("one with a NUL", 0x8007200B | 0, /DESC: \(21\) .* A password cannot hold a NUL\./,
           function () { validator.ChangePassword("bgreen", "third-sample", "third\0fourth"); });
raisesLike("one that is too short", 0x8007202F | 0, /DESC: \(19\) /,
           function () { validator.ChangePassword("bgreen", "third-sample", "short"); });
equal("nothing is changed", validator.ValidatePassword("bgreen", "third-sample"), 0);

// As somebody who is.
var user = new ActiveXObject("OrvoMembership.User");
user.setServerInfo(siteFile);
user.BindAs("adevries", info.FullUserPath("adevries"), "shop-sample");
user.ChangePassword("shop-sample", "other-sample");
equal("one's own", validator.ValidatePassword("adevries", "other-sample"), 0);
user.SetAttribValue("userPassword", "third-sample");
equal("one's own, without a check", validator.ValidatePassword("adevries", "third-sample"), 0);
equal("the user works on", user.CN, "adevries");

end();
