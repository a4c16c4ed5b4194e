function print(text) { WScript.Echo(text); }
