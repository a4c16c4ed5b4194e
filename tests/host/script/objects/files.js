// Files and folders by name, and text in files.

var files = new ActiveXObject("Scripting.FileSystemObject");
var ForReading = 1, ForWriting = 2, ForAppending = 8, TristateTrue = -1;

function number(what, expected, body) {
    try {
        body();
    } catch (error) {
        equal(what, error.number & 0xFFFF, expected);
        return;
    }
    fail(what, "no failure", expected);
}

// Names alone.
equal("base", files.GetBaseName("a/b.tar.gz"), "b.tar");
equal("extension", files.GetExtensionName("a/b.tar.gz"), "gz");
equal("no extension", files.GetExtensionName("a/b"), "");
equal("name", files.GetFileName("a/b.txt"), "b.txt");
equal("parent", files.GetParentFolderName("a/b.txt"), "a");
equal("no parent", files.GetParentFolderName("b.txt"), "");
equal("a built path's name", files.GetFileName(files.BuildPath("a", "b")), "b");
equal("a built path's parent", files.GetParentFolderName(files.BuildPath("a", "b")), "a");
equal("a name for the moment", /^rad[0-9A-F]{5}\.tmp$/i.test(files.GetTempName()), true);

// A folder of this script's own.
var temporary = files.GetSpecialFolder(2);
var root = files.BuildPath(temporary.Path, files.GetTempName());
function inside(name) { return files.BuildPath(root, name); }
equal("nothing there", files.FolderExists(root), false);
var folder = files.CreateFolder(root);
equal("it is there", files.FolderExists(root), true);
equal("it is no file", files.FileExists(root), false);
equal("its name", folder.Name, files.GetFileName(root));
equal("its path is its value", "" + folder, root);
number("a folder that is there", 58, function () { files.CreateFolder(root); });
number("a folder without a parent", 76, function () { files.CreateFolder(inside("no/where")); });

// Text.
var file = inside("a.txt");
var text = files.CreateTextFile(file);
text.Write("one");
text.WriteLine(" line");
text.WriteLine("two");
text.WriteBlankLines(1);
text.Write("end");
text.Close();
equal("the file is there", files.FileExists(file), true);
text = files.OpenTextFile(file);
equal("line", text.Line, 1);
equal("column", text.Column, 1);
equal("some characters", text.Read(3), "one");
equal("column behind them", text.Column, 4);
equal("not at the end of the line", text.AtEndOfLine, false);
equal("the rest of the line", text.ReadLine(), " line");
equal("the next line", text.Line, 2);
text.Skip(1);
equal("behind what was skipped", text.ReadLine(), "wo");
text.SkipLine();
equal("not at the end", text.AtEndOfStream, false);
equal("the rest", text.ReadAll(), "end");
equal("at the end", text.AtEndOfStream, true);
equal("at the end of a line", text.AtEndOfLine, true);
number("no more lines", 62, function () { text.ReadLine(); });
number("writing what is read", 54, function () { text.Write("x"); });
text.Close();
text = files.OpenTextFile(file, ForAppending);
text.WriteLine("!");
text.Close();
text = files.GetFile(file).OpenAsTextStream(ForReading);
var lines = [];
while (!text.AtEndOfStream) lines.push(text.ReadLine());
text.Close();
equal("all lines", lines.join("|"), "one line|two||end!");
text = files.OpenTextFile(file, ForWriting);
number("reading what is written", 54, function () { text.ReadAll(); });
text.Write("short");
text.Close();
equal("written anew", files.GetFile(file).Size, 5);
number("a file that is not there", 53, function () { files.OpenTextFile(inside("none")); });
number("nor its folder", 76, function () { files.OpenTextFile(inside("no/where"), ForWriting, true); });
number("a file that is there", 58, function () { files.CreateTextFile(file, false); });
files.OpenTextFile(inside("empty"), ForReading, true).Close();
equal("an empty file was made", files.GetFile(inside("empty")).Size, 0);

// Text of any language.
var letters = "Gr\u00FC\u00DFe \u0416 \uD83D\uDE00";
text = files.CreateTextFile(inside("wide.txt"), true, true);
text.WriteLine(letters);
text.Close();
text = files.OpenTextFile(inside("wide.txt"), ForReading, false, TristateTrue);
equal("all letters", text.ReadLine(), letters);
text.Close();

// Copies, moves, deletions.
files.CopyFile(file, inside("b.txt"));
number("no copy over a file", 58, function () { files.CopyFile(file, inside("b.txt"), false); });
number("no copy of nothing", 53, function () { files.CopyFile(inside("none"), inside("c.txt")); });
files.MoveFile(inside("b.txt"), inside("c.txt"));
equal("the old name is gone", files.FileExists(inside("b.txt")), false);
number("no move over a file", 58, function () { files.MoveFile(inside("c.txt"), file); });
var sub = files.CreateFolder(inside("sub"));
files.GetFile(inside("c.txt")).Copy(files.BuildPath(sub.Path, "d.txt"));
files.CopyFolder(sub.Path, inside("copy"));
equal("a copied folder's file", files.FileExists(files.BuildPath(inside("copy"), "d.txt")), true);
var names = [];
for (var all = new Enumerator(folder.Files); !all.atEnd(); all.moveNext())
    names.push(all.item().Name);
equal("files", names.sort().join(), "a.txt,c.txt,empty,wide.txt");
equal("how many", folder.Files.Count, 4);
equal("folders", folder.SubFolders.Count, 2);
equal("a file's folder", files.GetFile(file).ParentFolder.Name, folder.Name);
files.DeleteFile(inside("*.txt"));
equal("what agrees with a pattern is gone", files.GetFolder(root).Files.Count, 1);
number("nothing agrees any more", 53, function () { files.DeleteFile(inside("*.txt")); });
files.CreateFolder(inside("copy-2"));
files.DeleteFolder(inside("cop?-*"));
equal("folders that agree with a pattern are gone", files.FolderExists(inside("copy-2")), false);
equal("others are not", files.FolderExists(inside("copy")), true);
number("no folder agrees any more", 76, function () { files.DeleteFolder(inside("cop?-*")); });
files.DeleteFolder(inside("copy"));
equal("a folder is gone", files.FolderExists(inside("copy")), false);
number("no such folder", 76, function () { files.GetFolder(inside("copy")); });
number("no such file", 53, function () { files.GetFile(inside("copy")); });
files.DeleteFolder(root);
equal("all is gone", files.FolderExists(root), false);

end();
