// It reads the site's own configuration: the one that ORVO_SITE_CONFIG names.
var initialize = new ActiveXObject("OrvoMembership.Initialize");
WScript.Echo(initialize.InitializeConnectionPool(["MaximumSize", "IdleLimit"], [32, 60]));
WScript.Echo(initialize.InitializeCache(["Entries", "TimeToLive"], [1000, 5]));
try {
    initialize.InitializeCache(["Entrys"], [1000]);
} catch (error) {
    WScript.Echo(error.description);
}
