var settings = new ActiveXObject("Quendra.Configuration");
settings.LoadConfigurationFile(WScript.Arguments(0));
WScript.Echo(settings.ReadConfigValue("MEMBERSHIP", "UserContainer"));
WScript.Echo(settings.ReadConfigValue("membership", "NoSuchKey"));
try {
    settings.LoadConfigurationFile("/no/such/site.ini");
} catch (error) {
    WScript.Echo(error.description);
}
