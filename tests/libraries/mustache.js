function shown(template, view, partials, tags) {
    return function () { return Mustache.render(template, view, partials, tags); };
}
check("names", shown("Hello {{name}}, {{{raw}}} {{&raw}} {{raw}} {{none}}", {name: "A", raw: "<b>\"'/`=&</b>"}));
check("dots", shown("{{a.b.c}} {{a.x.c}} {{#a}}{{b.c}}{{/a}}", {a: {b: {c: 5}}}));
check("sections", shown("{{#list}}{{name}}{{^last}}, {{/last}}{{/list}}", {list: [{name: "x"}, {name: "y", last: true}]}));
check("implicit", shown("{{#list}}({{.}}){{/list}}", {list: [1, "a", 2.5]}));
check("inverted", shown("{{^none}}nothing{{/none}}{{^list}}empty{{/list}}", {list: []}));
check("functions", shown("{{#bold}}Hi {{name}}.{{/bold}} {{now}}", {name: "A", now: function () { return this.name + "!"; }, bold: function () { return function (text, render) { return "<b>" + render(text) + "</b>"; }; }}));
check("comments", shown("a{{! nothing }}b\n{{! alone }}\nc", {}));
check("partials", shown("<ul>\n  {{#people}}\n  {{> person}}\n  {{/people}}\n</ul>", {people: [{n: 1}, {n: 2}]}, {person: "<li>{{n}}</li>\n"}));
check("delimiters", shown("{{=<% %>=}}<% name %> {{ name }}<%={{ }}=%> {{name}}", {name: "A"}));
check("own delimiters", shown("[[name]] {{name}}", {name: "A"}, {}, ["[[", "]]"]));
check("nested", shown("{{#a}}{{#b}}{{x}}{{/b}}{{/a}}", {a: [{b: [{x: 1}, {x: 2}]}, {b: []}, {b: {x: 3}}]}));
check("whitespace", shown("| {{#a}}\n{{/a}}\n | {{^b}} x {{/b}} |", {a: true}));
check("unclosed tag", shown("a {{name", {}));
check("unclosed section", shown("{{#a}} b", {}));
check("wrong section", shown("{{#a}}{{/b}}", {}));
check("no text", shown(5, {}));
check("zero", shown("{{a}}{{b}}{{c}}{{#a}}x{{/a}}", {a: 0, b: false, c: ""}));
check("length", shown("{{s.length}} {{l.length}}", {s: "abc", l: [1, 2]}));
check("parse", function () { return Mustache.parse("a {{b}} {{#c}}d{{/c}}"); });
check("cache", function () { Mustache.clearCache(); return Mustache.render("{{a}}", {a: 1}) + Mustache.render("{{a}}", {a: 2}); });
check("escape", function () { var was = Mustache.escape; Mustache.escape = function (t) { return "[" + t + "]"; }; try { return Mustache.render("{{a}}{{{a}}}", {a: "x"}); } finally { Mustache.escape = was; } });
check("context", function () { var c = new Mustache.Context({a: 1}).push({b: 2}); return [c.lookup("a"), c.lookup("b"), c.lookup("x.y")]; });
