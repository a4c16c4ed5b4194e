// The entry points of a hosting server: pool and cache, and the users of an application.

var accessor = new ActiveXObject("OrvoMembership.PMMAccessor");
raises("before a configuration", "800A005B",
       block("5B", "OrvoMembership.PMMAccessor.GetLDAPUsers",
             "Object variable or With block variable not set"),
       function () { accessor.GetLDAPUsers(1); });
accessor.InitConfigFile(siteFile);

var users = accessor.GetLDAPUsers(1);
equal("the column", users.Fields.Item(0).Name, "CN");
equal("users of an application", users.RecordCount > 0, true);
equal("nobody uses it", accessor.GetLDAPUsers(-7).RecordCount, 0);
equal("administrators",
      ("|" + column(accessor.GetLDAPUsers(10), "CN").join("|") + "|").indexOf("|admin|") >= 0, true);

var initialize = new ActiveXObject("OrvoMembership.Initialize");
equal("the pool", initialize.InitializeConnectionPool(arrayOf("MaximumSize"), arrayOf(4)), true);
equal("the cache",
      initialize.InitializeCache(arrayOf("Entries", "TimeToLive"), arrayOf(100, 5)), true);
equal("the users through pool and cache", accessor.GetLDAPUsers(1).RecordCount, users.RecordCount);
raisesLike("a parameter that nobody knows", 0x8007203F - 0x100000000, /NoSuchThing/,
           function () { initialize.InitializeConnectionPool(arrayOf("NoSuchThing"), arrayOf(1)); });

end();
