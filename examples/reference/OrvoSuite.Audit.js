var audit = new ActiveXObject("OrvoSuite.Audit");
WScript.Echo("The site asks for " + (audit.IsOn() ? "an audit" : "none"));

// Without one nothing happens.
audit.Record("export", "done", "", "cn=orvo-service,ou=Services,o=Shop", "", "catalogue");
