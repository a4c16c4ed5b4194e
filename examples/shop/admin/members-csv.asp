<%@ Language="JScript" CodePage=65001 %>
<!-- #include virtual="/parts/lib.inc" -->
<!-- #include virtual="/parts/members.inc" -->
<%
// The whole list, as members.asp shows it page by page, for a spreadsheet.

// What begins like a formula would be one for a spreadsheet, whoever wrote it: an apostrophe in
// front makes it text.
function field(value) {
    var text = textOf(value);
    if (/^[=+\-@\t\r\n\uFF1D\uFF0B\uFF0D\uFF20]/.test(text)) text = "'" + text;
    return "\"" + text.replace(/"/g, "\"\"") + "\"";
}

Server.ScriptTimeout = 300;
var members = opened("OrvoMembership.Members", "Members"), wanted = wantedMembers();
// The sign in front tells spreadsheets that the text is UTF-8.
var text = "\uFEFFUser name,First name,Last name,E-mail,Partner,State\r\n";
try {
    for (var after = "", page; !page || after != ""; after = page.next) {
        page = membersPage(members, wanted, after, 2000);
        for (var i = 0; i < page.rows.length; i++) {
            var row = page.rows[i];
            text += [row.cn, row.first, row.last, row.mail, row.partner, row.state].map(field).join(",") + "\r\n";
        }
    }
} catch (error) {
    head("Members", explained(error));
    foot();
    Response.End();
}
Response.Clear();
Response.ContentType = "text/csv";
Response.AddHeader("Content-Disposition", "attachment; filename=\"members.csv\"");
Response.Write(text);
Response.End();
%>
