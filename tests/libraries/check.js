// Prints what a function gives, or how it fails.
function check(name, work) {
    var shown;
    try {
        shown = JSON.stringify(work());
    } catch (e) {
        shown = "fails: " + (e instanceof Error ? e.name : e);
    }
    print(name + ": " + shown);
}
