// What Wine's own objects for files can do: the platform's answer the same.

var files = new ActiveXObject("Scripting.FileSystemObject");

function number(what, expected, body) {
    try {
        body();
    } catch (error) {
        equal(what, error.number & 0xFFFF, expected);
        return;
    }
    fail(what, "no failure", expected);
}

var root = files.BuildPath(files.GetSpecialFolder(2).Path, files.GetTempName());
function inside(name) { return files.BuildPath(root, name); }
equal("no folder yet", files.FolderExists(root), false);
files.CreateFolder(root);
equal("a folder", files.FolderExists(root), true);
equal("no file", files.FileExists(root), false);
equal("its name", files.GetFolder(root).Name, files.GetFileName(root));
equal("its value", "" + files.GetFolder(root), root);
number("a folder that is there", 58, function () { files.CreateFolder(root); });
number("a folder that is not", 76, function () { files.GetFolder(inside("none")); });

var file = inside("a.txt"), other = inside("b.txt");
var text = files.CreateTextFile(file);
text.Write("one");
text.WriteLine(" line");
text.WriteLine();
text.Write("end");
number("reading what is written", 54, function () { text.ReadAll(); });
text.Close();
text = files.OpenTextFile(file);
equal("characters", text.Read(3), "one");
equal("the rest of a line", text.ReadLine(), " line");
equal("an empty line", text.ReadLine(), "");
equal("before the end", text.AtEndOfStream, false);
equal("the rest", text.ReadAll(), "end");
equal("at the end", text.AtEndOfStream, true);
number("no more", 62, function () { text.ReadAll(); });
number("writing what is read", 54, function () { text.Write("x"); });
text.Close();
text = files.OpenTextFile(file, 8);
text.Write("!");
text.Close();
text = files.GetFile(file).OpenAsTextStream(1);
var lines = [];
while (!text.AtEndOfStream) lines.push(text.ReadLine());
text.Close();
equal("lines", lines.join("|"), "one line||end!");
number("no file to read", 53, function () { files.OpenTextFile(inside("none")); });
number("no file to know", 53, function () { files.GetFile(inside("none")); });
number("no file to write", 53, function () { files.OpenTextFile(inside("none"), 2); });
number("a file that is there", 58, function () { files.CreateTextFile(file, false); });
files.OpenTextFile(inside("empty"), 1, true).Close();
equal("an empty file", files.GetFile(inside("empty")).Size, 0);
var letters = "Gr\u00FC\u00DFe \u0416 \uD83D\uDE00";
text = files.CreateTextFile(inside("wide"), true, true);
text.WriteLine(letters);
text.Close();
text = files.OpenTextFile(inside("wide"), 1, false, -1);
equal("letters", text.ReadLine(), letters);
text.Close();

files.CopyFile(file, other);
equal("a copy", files.FileExists(other), true);
number("no copy over a file", 58, function () { files.CopyFile(file, other, false); });
number("no copy of nothing", 53, function () { files.CopyFile(inside("none"), other); });
number("no move over a file", 58, function () { files.MoveFile(other, file); });
files.MoveFile(other, inside("c.txt"));
equal("moved away", files.FileExists(other), false);
equal("how many", files.GetFolder(root).Files.Count, 4);
equal("no folders", files.GetFolder(root).SubFolders.Count, 0);
number("no deletion of nothing", 53, function () { files.DeleteFile(inside("none")); });
var names = ["a.txt", "c.txt", "empty", "wide"];
for (var i = 0; i < names.length; ++i) files.DeleteFile(inside(names[i]));
equal("none is left", files.GetFolder(root).Files.Count, 0);
files.DeleteFolder(root, true);
equal("nor the folder", files.FolderExists(root), false);

end();
