// Somebody else's objects, which tell what their members are or do not.

var classes = ["Outsider.Records", "Outsider.TypedRecords", "Outsider.CarelessRecords"];
for (var c = 0; c < classes.length; ++c) {
    var kind = classes[c] + ": ";
    var records = new ActiveXObject(classes[c]);

    // Properties are values, methods are called: each once.
    var names = [];
    for (; !records.EOF; records.MoveNext()) names.push(records.Name);
    equal(kind + "rows", names.join(), "ann,bob,cid");
    records.MoveFirst();
    equal(kind + "a boolean", records.EOF, false);
    equal(kind + "a boolean is one", records.EOF ? "yes" : "no", "no");
    equal(kind + "a text", records.Name.length, 3);
    equal(kind + "names without case", records.NAME, "ann");
    equal(kind + "by a computed name", records["Na" + "me"], "ann");
    records.Name = "eve";
    records.Name += "!";
    equal(kind + "a property that was written", records.Name, "eve!");
    records.Touch();
    var touch = "Touch";
    equal(kind + "a method is called once", records[touch](), 2);
    equal(kind + "a method was called", records.Touches, 2);
    equal(kind + "arguments", records.Join("a", 1), "a1");
    equal(kind + "all arguments", records.Join("a", 1, "-"), "a-1");
    equal(kind + "within an expression",
          records.Join(records.Name, records.Item(records.Join("c", "n"))), "eve!eve! cn");
    equal(kind + "an index", records.Item("cn"), "eve! cn");
    equal(kind + "the default member", records("cn"), "eve! cn");
    equal(kind + "an optional index, without", records.Part, "whole");
    equal(kind + "an optional index, with", records.Part(2), "part 2");
    with (records) {
        Touch();
        equal(kind + "within with", Touches, 3);
    }
    var read = new Function("o", "return o.Name;"), call = new Function("o", "return o.Touch();");
    equal(kind + "read by a function made later", read(records), "eve!");
    equal(kind + "called by a function made later", call(records), 4);

    // Objects that they give, and they themselves as arguments.
    equal(kind + "an object", records.Next.Name, "bob");
    equal(kind + "and on", records.Next.Next.Next.EOF, true);
    equal(kind + "the same object", records.IsSame(records), true);
    equal(kind + "another object", records.IsSame(records.Next), false);
    var dictionary = new ActiveXObject("Scripting.Dictionary");
    dictionary.Add("records", records);
    equal(kind + "out of a dictionary", dictionary.Item("records").Name, "eve!");
    equal(kind + "is still the same", records.IsSame(dictionary.Item("records")), true);
    var walked = [];
    for (var all = new Enumerator(records); !all.atEnd(); all.moveNext()) walked.push(all.item());
    equal(kind + "walked through", walked.join(), "eve!,bob,cid");

    raises(kind + "its own failure", "80041234", "it is broken",
           function () { return records.Broken; });
    raises(kind + "no such member", "800A01B6", "Object doesn't support this property or method",
           function () { records.Nowhere(); });
    equal(kind + "nothing else was called", records.Touches, 4);
}

end();
