var greeter = new ActiveXObject("Hello.Greeter");
WScript.Echo(greeter.Greet("shop"));
greeter.Word = "Welcome";
WScript.Echo(greeter.greet("again"));
WScript.Echo(greeter.Greetings + " greetings");
