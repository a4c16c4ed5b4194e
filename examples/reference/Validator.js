var validator = new ActiveXObject("OrvoMembership.Validator");
validator.setServerInfo(WScript.Arguments(0));
WScript.Echo(validator.ValidatePassword("jsmith", "shop-sample"));
WScript.Echo(validator.ValidatePassword("jsmith", "guessed"));

validator.ChangePassword("jsmith", "shop-sample", "a better secret");
WScript.Echo(validator.ValidatePassword("jsmith", "a better secret"));
try {
    validator.ChangePassword("jsmith", "shop-sample", "another secret");
} catch (error) {
    WScript.Echo(/The current[^.]*/.exec(error.description)[0]);
}
