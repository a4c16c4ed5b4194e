var counter = new ActiveXObject("PlainCom.Counter");
counter.Add(40);
WScript.Echo(counter.Add("2"));
WScript.Echo(counter.Total);
try {
    counter.Add("many");
} catch (error) {
    WScript.Echo(error.description);
}
