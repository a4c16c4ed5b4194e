#include "host/web/pages/page_compiler.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

class PageCompilerTest : public testing::Test {
protected:
    void write(const std::string& path, std::string_view content) {
        folder_.write(fs::path(path).relative_path(), content);
    }
    std::string program(std::string_view page) {
        write("/page.asp", page);
        return compile_page(root_, "/page.asp").program;
    }
    // "line of the program: file:line of the page", for lines whose number differs or whose file is
    // another one.
    std::string lines(const PageSource& source) {
        std::string text;
        for (const auto& place : source.lines)
            text += place.file + ':' + std::to_string(place.line) + ' ';
        return text;
    }
    std::string refusal(std::string_view page) {
        try {
            return "accepted: " + program(page);
        } catch (const PageError& error) {
            EXPECT_EQ(error.what(), error.place.file + (error.place.line ? ", line " : "") +
                                        (error.place.line ? std::to_string(error.place.line) : "") +
                                        ": " + error.message);
            return error.place.file + ':' + std::to_string(error.place.line) + ' ' + error.message;
        }
    }

    TempFolder folder_;
    fs::path root_ = fs::canonical(folder_.path());
};

TEST_F(PageCompilerTest, TextIsWrittenAsOneStatement) {
    EXPECT_EQ(program("<p class=\"a\">\n\tb\\c</p>\r\n"),
              "Response.Write(\"<p class=\\\"a\\\">\\n\\x09b\\\\c</p>\\x0d\\n\");\n");
    EXPECT_EQ(program(""), "");
}

TEST_F(PageCompilerTest, TextWithCommentsIsOneStatementToo) {
    EXPECT_EQ(program("<% if (a) %>x<!-- y -->z"), " if (a) \nResponse.Write(\"x<!-- y -->z\");\n");
}

TEST_F(PageCompilerTest, LineEndsThatOnlyScriptsKnowStayText) {
    EXPECT_EQ(program("a\xE2\x80\xA8"
                      "b\xE2\x80\xA9"),
              "Response.Write(\"a\\u2028b\\u2029\");\n");
    EXPECT_EQ(program("\xE2\x80\x94"), "Response.Write(\"\xE2\x80\x94\");\n");
}

TEST_F(PageCompilerTest, CodeStandsAsItIsAndExpressionsAreWritten) {
    EXPECT_EQ(program("<% if (a) { %>x<%= b %><% } %>"),
              " if (a) { \nResponse.Write(\"x\");\nResponse.Write( b \n);\n } \n");
}

TEST_F(PageCompilerTest, ACommentAtTheEndOfCodeEndsWithIt) {
    EXPECT_EQ(program("<% a() // why %>x<%= b // what %>"),
              " a() // why \nResponse.Write(\"x\");\nResponse.Write( b // what \n);\n");
}

TEST_F(PageCompilerTest, EveryLineOfTheProgramKnowsItsPlace) {
    write("/inc/head.inc", "<h1>\n<%= title %>\n</h1>");
    write("/page.asp",
          "one\n<!-- #include file=\"inc/head.inc\" -->\nthree <%\na();\nb(); %>\nsix");
    const PageSource source = compile_page(root_, "/page.asp");
    EXPECT_EQ(source.program,
              "Response.Write(\"one\\n\");\n"
              "Response.Write(\"<h1>\\n\");\nResponse.Write( title \n);\n"
              "Response.Write(\"\\n</h1>\");\n"
              "Response.Write(\"\\nthree \");\n\na();\nb(); \nResponse.Write(\"\\nsix\");\n");
    EXPECT_EQ(lines(source),
              "/page.asp:1 /inc/head.inc:1 /inc/head.inc:2 /inc/head.inc:2 /inc/head.inc:2 "
              "/page.asp:2 /page.asp:3 /page.asp:4 /page.asp:5 /page.asp:5 ");
    ASSERT_EQ(source.files.size(), 2u);
    EXPECT_EQ(source.files[1].file, root_ / "inc/head.inc");
    EXPECT_EQ(source.files[1].size, 23u);
}

TEST_F(PageCompilerTest, LineEndsOfAnyKindInCodeKeepTheirPlaces) {
    write("/page.asp",
          "<% a();\r\nb();\rc();\xE2\x80\xA8"
          "d();\ne(); %>");
    EXPECT_EQ(lines(compile_page(root_, "/page.asp")),
              "/page.asp:1 /page.asp:2 /page.asp:2 /page.asp:2 /page.asp:3 ");
}

TEST_F(PageCompilerTest, IncludesCountFromTheirFileOrFromTheSite) {
    write("/a/b/inner.inc", "inner");
    write("/a/outer.inc", "<!--#INCLUDE FILE='b/inner.inc'--><!--#include virtual=\"/top.inc\"-->");
    write("/top.inc", "\xEF\xBB\xBFtop<!-- a comment <% x %> --><!---->");
    write("/a/page.asp", "<!-- #include file=\"../a/outer.inc\" -->");
    EXPECT_EQ(compile_page(root_, "/a/page.asp").program,
              "Response.Write(\"inner\");\nResponse.Write(\"top<!-- a comment \");\n x \n"
              "Response.Write(\" --><!---->\");\n");
}

TEST_F(PageCompilerTest, ADirectiveMayStandInFront) {
    EXPECT_EQ(program("\n <%@ Language=\"JScript\" CodePage=65001 %>x"),
              "Response.Write(\"x\");\n");
    EXPECT_EQ(program("<%@LANGUAGE=javascript%>"), "");
    EXPECT_EQ(program("<%@ Language=JScript %>\r\n\nx"), "Response.Write(\"\\nx\");\n");
    EXPECT_EQ(refusal("<%@ Language=JScript %>\n<% open"),
              "/page.asp:2 \"<%\" is not closed by \"%>\"");
    EXPECT_EQ(program("<%@ %>"), "");
}

TEST_F(PageCompilerTest, ADirectiveMaySayMoreThanTheLanguage) {
    EXPECT_EQ(program("<%@ Language=JScript LCID=1033 Transaction=\"Not_Supported\" "
                      "EnableSessionState=TRUE CodePage=65001 %>x"),
              "Response.Write(\"x\");\n");
    EXPECT_TRUE(compile_page(root_, "/page.asp").settings.has_session);
    write("/page.asp", "<%@ EnableSessionState=false %>");
    EXPECT_FALSE(compile_page(root_, "/page.asp").settings.has_session);
}

TEST_F(PageCompilerTest, ScriptsThatRunAtTheServerStandBehindThePage) {
    write("/lib/a.js", "function a() {\n}");
    write("/lib/b.js", "var b");
    write("/page.asp",
          "1<SCRIPT Language='JavaScript' RunAt=Server>\nf(\"<%\")\n</SCRIPT >2"
          "<script runat='server' src=\"lib\\a.js\">not read</script>\n"
          "<% if (x) { %><script src=/lib/b.js runat=server></script><% } %>"
          "<script>client()</script>");
    const PageSource source = compile_page(root_, "/page.asp");
    EXPECT_EQ(source.program,
              "Response.Write(\"1\");\nResponse.Write(\"2\");\nResponse.Write(\"\\n\");\n"
              " if (x) { \n } \nResponse.Write(\"<script>client()</script>\");\n"
              "\nf(\"<%\")\n\nfunction a() {\n}\nvar b\n");
    EXPECT_EQ(lines(source),
              "/page.asp:1 /page.asp:3 /page.asp:3 /page.asp:4 /page.asp:4 /page.asp:4 "
              "/page.asp:1 /page.asp:2 /page.asp:3 /lib/a.js:1 /lib/a.js:2 /lib/b.js:1 ");
    ASSERT_EQ(source.files.size(), 3u);
}

TEST_F(PageCompilerTest, AScriptOfTheServerMayIncludeAndBeHiddenFromOldBrowsers) {
    write("/f.inc", "f()");
    EXPECT_EQ(program("<script runat=server><!--\na()\n<!-- #include file='f.inc' -->\nb()\n//-->\n"
                      "</script>"),
              "\na()\n\nf()\n\nb()\n//\n");
    EXPECT_EQ(program("<script runat=server><!-- #include file='f.inc' --></script>"), "\nf()\n\n");
}

TEST_F(PageCompilerTest, PathsOfIncludesMayHaveBackslashes) {
    write("/a/b.inc", "b");
    EXPECT_EQ(
        program("<!-- #include file=\"a\\b.inc\" --><!-- #include virtual=\"\\a\\b.inc\" -->"),
        "Response.Write(\"b\");\nResponse.Write(\"b\");\n");
}

TEST_F(PageCompilerTest, GlobalAsaHasScriptsAndNothingElse) {
    const auto global = [&](std::string_view content) {
        write("/global.asa", content);
        try {
            return compile_global(root_, "/global.asa").program;
        } catch (const PageError& error) {
            return std::to_string(error.place.line) + ' ' + error.message;
        }
    };
    EXPECT_EQ(global("<!-- a\ncomment -->\n<script language=JScript runat=server>a()</script>\n"),
              "a()\n");
    const std::string refusal =
        " this file has <script runat=\"server\"> blocks, and nothing outside of them";
    EXPECT_EQ(global("<!-- a\ncomment -->\n text <script runat=server></script>"), "3" + refusal);
    EXPECT_EQ(global("\n<% x %>"), "2" + refusal);
    EXPECT_EQ(global("<script>client()</script>"), "1" + refusal);
    EXPECT_EQ(global("\n<object runat=server scope=Session id=a progid=b></object>"),
              "2 <object runat=\"server\"> is not known here; make the object by "
              "Server.CreateObject on the page that needs it");
}

TEST_F(PageCompilerTest, WhatIsNoPageIsRefusedWithItsPlace) {
    write("/self.inc", "<!-- #include file=\"self.inc\" -->");
    write("/bad.inc", "ok\n<% never closed");
    write("/latin.inc", "caf\xE9");
    write("/deep.inc", "<%@ Language=JScript %>");
    struct Refused {
        std::string_view page;
        std::string_view reason;
    };
    for (const auto& [page, reason] : std::initializer_list<Refused>{
             {"a\nb <% c", "/page.asp:2 \"<%\" is not closed by \"%>\""},
             {"\n<%= %>", "/page.asp:2 \"<%=\" has nothing to write"},
             {"<%@ Language=\"VBScript\" %>",
              "/page.asp:1 the language of pages is ECMAScript (Language=\"JScript\"), not "
              "\"VBScript\""},
             {"<%@ CodePage=1252 %>", "/page.asp:1 pages are UTF-8 (CodePage=65001), not \"1252\""},
             {"<%@ EnableSessionState=ReadOnly %>",
              "/page.asp:1 EnableSessionState is \"True\" or \"False\", not \"ReadOnly\""},
             {"<%@ LCID=1031 %>",
              "/page.asp:1 texts, numbers and dates are formatted the same everywhere (LCID=1033), "
              "not \"1031\""},
             {"<%@ Transaction=Required %>",
              "/page.asp:1 pages run in no transaction (Transaction=\"Not_Supported\"), not "
              "\"Required\""},
             {"<%@ Debug=True %>", "/page.asp:1 the directive \"Debug\" is not known"},
             {"<%@ Language %>", "/page.asp:1 the directive cannot be read from \"Language \" on"},
             {"<%@ Language=\"JScript %>",
              "/page.asp:1 the directive cannot be read from \"\"JScript \" on"},
             {"x\n<%@ Language=JScript %>",
              "/page.asp:2 a directive stands at the beginning of the page only"},
             {"<% a %><%@ Language=JScript %>",
              "/page.asp:1 a directive stands at the beginning of the page only"},
             {"<!-- #include file=\"deep.inc\" -->",
              "/deep.inc:1 a directive stands at the beginning of the page only"},
             {"\n<!-- #include file=\"none.inc\" -->",
              "/page.asp:2 there is no file \"/none.inc\""},
             {"<!-- #include file=\"/top.inc\" -->",
              "/page.asp:1 the file of an include is relative to the page's folder; "
              "virtual=\"/top.inc\" counts from the site's"},
             {"<!-- #include file=\"../up.inc\" -->", "/page.asp:1 there is no file \"/up.inc\""},
             {"<!-- #include -->",
              "/page.asp:1 the include names no file; write <!-- #include file=\"name\" -->"},
             {"a\n<!-- #include src=\"x\" -->",
              "/page.asp:2 the include names no file; write <!-- #include file=\"name\" -->"},
             {"\n\n<!-- #include file=\"bad.inc\"",
              "/page.asp:3 the include is not closed by \"-->\""},
             {"<!-- #include file=\"bad.inc\" -->", "/bad.inc:2 \"<%\" is not closed by \"%>\""},
             {"<!-- #include file=\"self.inc\" -->", "/self.inc:1 \"/self.inc\" includes itself"},
             {"<!-- #include file=\"latin.inc\" -->", "/latin.inc:0 the file is not UTF-8"},
             {"a\n<Script Language=JScript RUNAT=\"server\">f()",
              "/page.asp:2 <script> is not closed by \"</script>\""},
             {"a\n<script runat=server ", "/page.asp:2 the tag is not closed by \">\""},
             {"<script runat=\"client\">f()</script>",
              "/page.asp:1 runat is \"server\", not \"client\""},
             {"\n<script language='vbscript' runat=server>Dim x</script>",
              "/page.asp:2 the language of pages is ECMAScript (Language=\"JScript\"), not "
              "\"vbscript\""},
             {"<script runat=server src=\"none.js\"></script>",
              "/page.asp:1 there is no file \"/none.js\""},
             {"<object runat=server id=x progid=y></object>",
              "/page.asp:1 <object runat=\"server\"> is not known here; make the object by "
              "Server.CreateObject on the page that needs it"},
             {"<!-- #include file=\".hidden.inc\" -->",
              "/page.asp:1 there is no file \"/.hidden.inc\""},
         })
        EXPECT_EQ(refusal(page), reason) << page;
}

TEST_F(PageCompilerTest, IncludesStandSixteenDeepAtMost) {
    write("/i16.inc", "bottom");
    for (int i = 1; i < 16; ++i)
        write("/i" + std::to_string(i) + ".inc",
              "<!-- #include file=\"i" + std::to_string(i + 1) + ".inc\" -->");
    EXPECT_EQ(program("<!-- #include file=\"i1.inc\" -->"), "Response.Write(\"bottom\");\n");
    write("/i16.inc", "<!-- #include file=\"i17.inc\" -->");
    write("/i17.inc", "too deep");
    EXPECT_EQ(refusal("<!-- #include file=\"i1.inc\" -->"),
              "/i16.inc:1 includes stand more than 16 deep in each other");
}

TEST_F(PageCompilerTest, AnIncludeMayNotMultiplyWithoutEnd) {
    write("/big.inc", std::string(1024 * 1024, 'x'));
    std::string page;
    for (int i = 0; i < 5; ++i) page += "<!-- #include file=\"big.inc\" -->\n";
    EXPECT_EQ(refusal(page),
              "/page.asp:4 the page is larger than 4194304 bytes, with what it includes");
}

}  // namespace
}  // namespace orvo::web
