// Streams in memory, of text and of bytes, and files that they are read from and written to.

var adTypeBinary = 1, adTypeText = 2, adReadLine = -2, adWriteLine = 1, adSaveCreateOverWrite = 2;
var files = new ActiveXObject("Scripting.FileSystemObject");
var file = files.BuildPath(files.GetSpecialFolder(2).Path, files.GetTempName());

function number(what, expected, body) {
    try {
        body();
    } catch (error) {
        equal(what, error.number & 0xFFFF, expected);
        return;
    }
    fail(what, "no failure", expected);
}
function opened(type, charset) {
    var stream = new ActiveXObject("ADODB.Stream");
    stream.Type = type;
    if (charset) stream.Charset = charset;
    stream.Open();
    return stream;
}
function hexadecimal(bytes) {
    if (bytes === null) return "null";
    var all = new VBArray(bytes).toArray();
    for (var i = 0; i < all.length; ++i) all[i] = (all[i] < 16 ? "0" : "") + all[i].toString(16);
    return all.join(" ");
}
// The bytes of a text stream.
function bytesOf(stream) {
    stream.Position = 0;
    stream.Type = adTypeBinary;
    return hexadecimal(stream.Read());
}

// As it begins.
var stream = new ActiveXObject("ADODB.Stream");
equal("state", stream.State, 0);
equal("type", stream.Type, adTypeText);
equal("charset", stream.Charset, "Unicode");
equal("line separator", stream.LineSeparator, -1);
equal("mode", stream.Mode, 0);
number("size of a closed one", 3704, function () { return stream.Size; });
number("text of a closed one", 3704, function () { stream.WriteText("x"); });
number("closing a closed one", 3704, function () { stream.Close(); });
stream.Open();
equal("open", stream.State, 1);
equal("empty", stream.Size + " " + stream.EOS + " " + stream.Position, "0 true 0");
number("opening an open one", 3705, function () { stream.Open(); });
number("mode of an open one", 3705, function () { stream.Mode = 1; });
equal("no text", stream.ReadText(), "");
number("bytes of a text", 3219, function () { stream.Read(); });
number("no such type", 3001, function () { stream.Type = 3; });
number("no such charset", 3001, function () { stream.Charset = "klingon"; });
number("no such separator", 3001, function () { stream.LineSeparator = 1; });

// Character sets, with and without a mark.
stream.WriteText("a\u00FC\u20AC");
equal("position behind a text", stream.Position, 8);
number("another charset on the way", 3219, function () { stream.Charset = "utf-8"; });
equal("UTF-16", bytesOf(stream), "ff fe 61 00 fc 00 ac 20");
var expected = {"utf-8": "ef bb bf 61 c3 bc e2 82 ac", "utf-16be": "fe ff 00 61 00 fc 20 ac",
                "iso-8859-1": "61 fc 3f", "windows-1252": "61 fc 80", "us-ascii": "61 3f 3f"};
for (var charset in expected) {
    stream = opened(adTypeText, charset);
    stream.WriteText("a\u00FC\u20AC");
    stream.WriteText("");
    stream.Position = 0;
    equal(charset + " read", stream.ReadText().length, 3);
    equal(charset, bytesOf(stream), expected[charset]);
}

// Lines and characters.
stream = opened(adTypeText, "utf-8");
stream.WriteText("one", adWriteLine);
stream.WriteText("Gr\u00FC\u00DFe \uD83D\uDE00!", adWriteLine);
stream.WriteText("end");
stream.Position = 0;
equal("a line", stream.ReadText(adReadLine), "one");
equal("characters", stream.ReadText(5), "Gr\u00FC\u00DFe");
equal("a pair of halves", stream.ReadText(2), " \uD83D\uDE00");
stream.SkipLine();
equal("the last line", stream.ReadText(adReadLine), "end");
equal("at the end", stream.EOS, true);
equal("nothing more", stream.ReadText(adReadLine), "");
stream.Position = 0;
stream.LineSeparator = 10;
equal("up to a line feed", stream.ReadText(adReadLine), "one\r");
stream.Position = 6;
stream.SetEOS();
equal("cut off", stream.Size, 6);
stream.WriteText("!");
equal("grown again", bytesOf(stream), "ef bb bf 6f 6e 65 21");

// Bytes.
stream = opened(adTypeBinary);
number("a text is no bytes", 3001, function () { stream.Write("text"); });
stream.Write(new Uint8Array([1, 2, 250, 0]));
equal("size", stream.Size, 4);
equal("at the end", hexadecimal(stream.Read()), "null");
stream.Position = 1;
equal("some", hexadecimal(stream.Read(2)), "02 fa");
stream.Position = 6;
equal("zeros behind the end", stream.Size, 6);
number("before the beginning", 3001, function () { stream.Position = -1; });
stream.Position = 3;
stream.Write(new Uint8Array([9]));
stream.Position = 0;
equal("all", hexadecimal(stream.Read()), "01 02 fa 09 00 00");
number("text of bytes", 3219, function () { stream.ReadText(); });

// Files.
stream.SaveToFile(file);
equal("at the beginning then", stream.Position, 0);
equal("as many bytes", files.GetFile(file).Size, 6);
number("not over a file", 3004, function () { stream.SaveToFile(file); });
stream.SetEOS();
stream.Write(new Uint8Array([0xEF, 0xBB, 0xBF, 0x68, 0xC3, 0xA9]));
stream.SaveToFile(file, adSaveCreateOverWrite);
stream.Close();
var text = opened(adTypeText, "utf-8");
text.LoadFromFile(file);
equal("without its mark", text.ReadText(), "h\u00E9");
number("no such file", 3002, function () { text.LoadFromFile(file + ".none"); });
equal("what was there is still there", text.Size, 6);
files.DeleteFile(file);

// From one to another.
var target = opened(adTypeText, "iso-8859-1");
text.Position = 0;
text.CopyTo(target);
equal("into another charset", bytesOf(target), "68 e9");
target = opened(adTypeBinary);
text.Position = 0;
text.CopyTo(target, 1);
equal("a character as bytes", bytesOf(target), "68");
text.CopyTo(target);
equal("and the rest", bytesOf(target), "68 c3 a9");
number("bytes are no text", 3001, function () { target.CopyTo(text); });

// What may be done.
stream = new ActiveXObject("ADODB.Stream");
stream.Mode = 1;
stream.Open();
number("writing what is read only", 3219, function () { stream.WriteText("x"); });
number("a source", 3251, function () { new ActiveXObject("ADODB.Stream").Open("URL=http://x"); });

end();
