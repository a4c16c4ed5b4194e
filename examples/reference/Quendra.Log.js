var log = new ActiveXObject("Quendra.Log");
log.LogMessage("Shop.Catalogue", "It was read anew.", 1);

var file = new ActiveXObject("WScript.Shell").ExpandEnvironmentStrings("%ORVO_LOG_FILE%");
var text = new ActiveXObject("Scripting.FileSystemObject").OpenTextFile(file).ReadAll();
WScript.Echo(/Shop\.Catalogue[^\r\n]*/.exec(text)[0]);
