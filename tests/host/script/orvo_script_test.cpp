// The program orvo-script, as a person who runs it meets it.

#include <gmock/gmock.h>

#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

class OrvoScript : public testing::Test {
protected:
    std::string file(const std::string& name, std::string_view source) {
        return folder.write(name, source).string();
    }
    // What the program prints; its exit code is in `code` then.
    std::string run(std::vector<std::string> arguments) {
        const std::filesystem::path log = folder.path() / "log";
        std::filesystem::remove(log);
        arguments.insert(arguments.begin(), ORVO_SCRIPT);
        code = ChildProcess(arguments, log).wait();
        return content_of(log);
    }
    std::string run_text(std::string_view source, std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), file("test.js", source));
        return run(std::move(arguments));
    }
    std::string path(const std::string& name) { return (folder.path() / name).string(); }

    TempFolder folder;
    int code = -1;
};

TEST_F(OrvoScript, PrintsALinePerEcho) {
    EXPECT_EQ(run_text("WScript.Echo('a', 1.5, true, null, -7); WScript.Echo();"
                       "WScript.Echo('\xD0\x96\xF0\x9F\x98\x80');"),
              "a 1.5 true null -7\n\n\xD0\x96\xF0\x9F\x98\x80\n");
    EXPECT_EQ(code, 0);
}

TEST_F(OrvoScript, WritesToBothStreams) {
    EXPECT_EQ(run_text("WScript.StdOut.Write('a'); WScript.StdOut.WriteLine('b');"
                       "WScript.StdOut.WriteLine(); WScript.StdOut.WriteBlankLines(2);"
                       "WScript.StdOut.Write('c');"),
              "ab\n\n\n\nc");
    EXPECT_EQ(run_text("WScript.StdErr.WriteLine('wrong');"), "wrong\n");
}

TEST_F(OrvoScript, FailsWhereItsOutputIsLost) {
    for (const char* source : {"WScript.Echo('a')", "WScript.StdOut.Write('a'); WScript.Quit(0)"}) {
        const std::string script = file("test.js", source);
        const std::filesystem::path log = folder.path() / "log";
        std::filesystem::remove(log);
        code =
            ChildProcess(
                {"/bin/sh", "-c", std::string(ORVO_SCRIPT) + " '" + script + "' >/dev/full"}, log)
                .wait();
        EXPECT_EQ(content_of(log), "orvo-script: the output cannot be written\n") << source;
        EXPECT_EQ(code, 1) << source;
    }
}

TEST_F(OrvoScript, EchoesAnyNumberOfValues) {
    EXPECT_EQ(run_text("WScript.Echo(1,2,3,4,5,6,7,8,9,10,'e',12); WScript.Echo(undefined, 'x');"),
              "1 2 3 4 5 6 7 8 9 10 e 12\n x\n");
}

TEST_F(OrvoScript, EchoesTheScriptsOwnObjectsAsTheirTexts) {
    EXPECT_EQ(run_text("WScript.Echo(new Error('x'), {}, /a/g, {toString: function () { return "
                       "'own'; }}); try { null.x } catch (e) { WScript.Echo(e) }"),
              "Error: x [object Object] /a/g own\n"
              "TypeError: cannot read property 'x' of null\n");
    EXPECT_EQ(code, 0);
}

TEST_F(OrvoScript, ReadsItsInput) {
    const std::string script =
        file("test.js",
             "var lines = 0, all = WScript.StdIn; all.SkipLine(); while "
             "(!all.AtEndOfStream) { WScript.StdOut.Write(all.Read(1)); "
             "WScript.StdOut.WriteLine(WScript.StdIn.ReadLine() + all.Line); }");
    const std::string input = file("input", "zero\none\r\n\xD0\x96\xD0\x96\nend");
    const std::filesystem::path log = folder.path() / "log";
    ChildProcess(
        {"/bin/sh", "-c", std::string(ORVO_SCRIPT) + " '" + script + "' < '" + input + "'"}, log)
        .wait();
    EXPECT_EQ(content_of(log),
              "one3\n\xD0\x96\xD0\x96"
              "4\nend4\n");
    EXPECT_EQ(run_text("WScript.StdOut.ReadLine()"),
              path("test.js") + ", line 1: Bad file mode (0x800A0036)\n");
}

TEST_F(OrvoScript, TellsNamedArgumentsFromOthers) {
    EXPECT_EQ(run_text("var a = WScript.Arguments, n = a.Named, u = a.Unnamed;"
                       "WScript.Echo(a.length, n.Count(), n.length, u.length, u(0), u.Item(1));"
                       "WScript.Echo(n('role'), n.Item('ROLE'), n.Exists('verbose'), n('verbose'),"
                       "n.Exists('no'), typeof n('no'));"
                       "for (var e = new Enumerator(n); !e.atEnd(); e.moveNext()) "
                       "WScript.Echo(e.item());",
                       {"/role:a:b", "in.csv", "/Verbose", "/etc/hosts", "/role:2"}),
              "5 2 2 2 in.csv /etc/hosts\na:b a:b true  false undefined\nrole\nVerbose\n");
}

TEST_F(OrvoScript, HasNoUsageToShow) {
    EXPECT_EQ(run_text("WScript.Arguments.ShowUsage()"),
              path("test.js") +
                  ", line 1: Object doesn't support this action: a script here does not say which "
                  "arguments it takes; write its usage with WScript.Echo (0x800A01BD)\n");
}

TEST_F(OrvoScript, HasTheEnvironmentOfTheShellAndRunsNoPrograms) {
    EXPECT_EQ(run_text("var s = new ActiveXObject('WScript.Shell'), e = s.Environment('PROCESS');"
                       "e('ORVO_A') = 'b'; WScript.Echo(e('ORVO_A'), e('ORVO_NONE') === '', "
                       "s.ExpandEnvironmentStrings('<%ORVO_A%> %ORVO_NONE% 100% %%'));"
                       "e.Remove('ORVO_A'); WScript.Echo(e('ORVO_A') === '', e.Count() > 0);"
                       "s.CurrentDirectory = '/'; WScript.Echo(s.CurrentDirectory);"),
              "b true <b> %ORVO_NONE% 100% %%\ntrue true\n/\n");
    EXPECT_EQ(run_text("new ActiveXObject('wscript.shell').Run('true')"),
              path("test.js") +
                  ", line 1: Object doesn't support this action: WScript.Shell runs no programs "
                  "here, it has the environment and the current folder only (0x800A01BD)\n");
}

TEST_F(OrvoScript, EndsAScriptAfterItsTimeout) {
    EXPECT_EQ(run_text("WScript.Echo(WScript.Timeout); WScript.Timeout = 1; for (;;) ;"),
              "0\n" + path("test.js") + ", line 1: The script ran longer than it may (1000 ms)\n");
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoScript, HandsItsArgumentsOn) {
    EXPECT_EQ(run_text("var a = WScript.Arguments; WScript.Echo(a.length, a.Count(), a(0), "
                       "a.Item(1)); for (var e = new Enumerator(a); !e.atEnd(); e.moveNext()) "
                       "WScript.Echo(e.item());",
                       {"--first", "\xD0\x96"}),
              "2 2 --first \xD0\x96\n--first\n\xD0\x96\n");
    EXPECT_EQ(run_text("WScript.Arguments(0)"),
              path("test.js") + ", line 1: Subscript out of range (0x800A0009)\n");
}

TEST_F(OrvoScript, KnowsItsOwnNames) {
    EXPECT_EQ(run_text("WScript.Echo(WScript.ScriptName, WScript.ScriptFullName, WScript.Name);"),
              "test.js " + path("test.js") + " orvo-script\n");
}

TEST_F(OrvoScript, QuitEndsItAtOnce) {
    EXPECT_EQ(run_text("WScript.Echo(1); try { WScript.Quit(7); } finally { WScript.Echo(2); }"
                       "WScript.Echo(3);"),
              "1\n");
    EXPECT_EQ(code, 7);
    run_text("WScript.Quit()");
    EXPECT_EQ(code, 0);
}

TEST_F(OrvoScript, AnUncaughtErrorTellsItsPlaceAndFails) {
    EXPECT_EQ(run_text("WScript.Echo('before');\n\nWScript.Nowhere();"),
              "before\n" + path("test.js") +
                  ", line 3: Object doesn't support this property or method (0x800A01B6)\n");
    EXPECT_EQ(code, 1);
    EXPECT_EQ(run_text("\nthrow 'sorry';"), path("test.js") + ", line 2: sorry\n");
    EXPECT_EQ(code, 1);
    EXPECT_THAT(run_text("new ActiveXObject('Nobody.HasIt')"),
                testing::StartsWith(path("test.js") +
                                    ", line 1: Automation server can't create object: The "
                                    "component \"Nobody.HasIt\" is not known in /"));
    EXPECT_EQ(code, 1);
    EXPECT_EQ(run_text("\nthrow new Error(0x800A0005, 'not so');"),
              path("test.js") + ", line 2: not so (0x800A0005)\n");
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoScript, RunsNothingOfAFileThatIsNoScript) {
    EXPECT_EQ(run_text("WScript.Echo(1);\nvar = 2;"),
              path("test.js") + ", line 2: invalid variable declaration\n");
    EXPECT_EQ(code, 2);
    EXPECT_EQ(run({path("none.js")}), path("none.js") + ": the file cannot be read\n");
    EXPECT_EQ(code, 2);
    EXPECT_EQ(run({folder.path().string()}),
              folder.path().string() + ": the file cannot be read\n");
    EXPECT_EQ(code, 2);
}

TEST_F(OrvoScript, IncludedFilesRunFirstAmongTheSameGlobals) {
    const std::string first = file("first.js", "\xEF\xBB\xBFvar a = 1;\nfunction f() { nosuch; }");
    const std::string second = file("second.js", "a += 1;");
    EXPECT_EQ(
        run({"--include", first, "--include", second, file("main.js", "WScript.Echo(a); f()")}),
        "2\n" + first + ", line 2: ReferenceError: identifier 'nosuch' undefined\n");
    EXPECT_EQ(code, 1);
}

TEST_F(OrvoScript, SaysWhatIsMissing) {
    for (const std::vector<std::string>& wrong :
         {std::vector<std::string>{}, {"--include"}, {"--include", "a"}, {"--other", "a"}}) {
        EXPECT_THAT(run(wrong), testing::EndsWith("; see orvo-script --help\n"));
        EXPECT_EQ(code, 2);
    }
}

}  // namespace
}  // namespace orvo
