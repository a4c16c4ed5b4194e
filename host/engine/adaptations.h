#pragma once

namespace orvo::script {

// What makes the language's own library fit for scripts. present(function, name, length) gives a
// function the looks of one of the language's own; last_match() is the last match as exec answers
// it, or what was searched, and tell_match(function) takes the function that tells a part of it. It
// is rewritten like any script, so its own loops look at the clock.
//
//  - sort: the language's own leaves what compares as equal in any order; here its order is kept.
//  - the last match, and the numbers of run-time errors.
inline constexpr const char* adaptations = R"js(function (present, last_match, tell_match) {
    var global = this, is_array = Array.isArray;
    function define(object, name, value) {
        Object.defineProperty(object, name,
                              {value: value, writable: true, enumerable: false, configurable: true});
    }

    function merged(from, to, width, compare) {
        for (var begin = 0; begin < from.length; begin += 2 * width) {
            var left = begin, middle = Math.min(begin + width, from.length);
            var right = middle, end = Math.min(begin + 2 * width, from.length);
            for (var at = begin; at < end; ++at) {
                var takes_left = left < middle &&
                    (right >= end || !(compare(from[left], from[right]) > 0));
                to[at] = takes_left ? from[left++] : from[right++];
            }
        }
    }
    var plain_sort = Array.prototype.sort, call = plain_sort.call.bind(plain_sort);
    define(Array.prototype, "sort", present(function (compare) {
        "use strict";
        if (typeof compare !== "function") return call(this, compare);
        var list = Object(this), length = list.length >>> 0, values = [], empty = 0, i;
        for (i = 0; i < length; ++i) {
            if (!(i in list)) continue;
            if (list[i] === undefined) ++empty;
            else values[values.length] = list[i];
        }
        for (var width = 1, other = []; width < values.length; width *= 2) {
            merged(values, other, width, compare);
            var swapped = values;
            values = other;
            other = swapped;
        }
        for (i = 0; i < values.length; ++i) list[i] = values[i];
        for (; empty > 0; --empty) list[i++] = undefined;
        for (; i < length; ++i) delete list[i];
        return list;
    }, "sort", 1));

    // The engine's own names are not listed.
    function add_listing(object, name) {
        var all = object[name], numbers = Number.prototype, begins =
            Function.prototype.call.bind(String.prototype.lastIndexOf);
        define(object, name, present(function (listed) {
            var names = all(listed), shown = [], i;
            if (listed !== global && listed !== numbers) return names;
            for (i = 0; i < names.length; ++i)
                if (typeof names[i] !== "string" || begins(names[i], "__orvo_", 0) !== 0)
                    shown[shown.length] = names[i];
            return shown;
        }, name, 1));
    }
    add_listing(Object, "getOwnPropertyNames");
    add_listing(Reflect, "ownKeys");

    ["Duktape", "CBOR", "Buffer", "TextEncoder", "TextDecoder", "performance"].forEach(
        function (name) { delete global[name]; });
    delete String.fromBufferRaw;

    var Pattern = RegExp, exec = Pattern.prototype.exec, searched, found;
    function search(asked) {
        var flags = asked.pattern.ignoreCase ? "i" : "", match, last = null;
        if (asked.pattern.multiline) flags += "m";
        var all = asked.pattern.global && !asked.is_first;
        var pattern = new Pattern(asked.pattern.source, all ? flags + "g" : flags);
        while ((match = exec.call(pattern, asked.text)) !== null) {
            last = match;
            if (!all) break;
            if (match[0] === "") ++pattern.lastIndex;
        }
        return last;
    }
    function match() {
        var now = last_match();
        if (now !== searched) {
            found = is_array(now) ? now : search(now);
            searched = last_match();
        }
        return found;
    }
    tell_match(function (part) {
        var last = match(), end = last ? last.index + last[0].length : -1;
        if (!last) return part === "index" || part === "lastIndex" ? -1 : "";
        switch (part) {
            case "input": return last.input;
            case "lastMatch": return last[0];
            case "lastParen": return last.length > 1 && last[last.length - 1] || "";
            case "leftContext": return last.input.slice(0, last.index);
            case "rightContext": return last.input.slice(end);
            case "index": return last.index;
            case "lastIndex": return end;
            default: return last[part] || "";
        }
    });

    // The numbers of run-time errors, by what the messages of this engine contain.
    var numbers = [
        ["ReferenceError", "identifier '", 5009],
        ["TypeError", "not callable (property", 438],
        ["TypeError", "not callable", 5002],
        ["TypeError", "' of undefined", 5007],
        ["TypeError", "' of null", 5007],
        ["TypeError", "expected Date", 5006],
        ["TypeError", "RegExp required", 5016],
        ["TypeError", "number expected", 5001],
        ["RangeError", "callstack limit", 28],
        ["RangeError", "invalid length", 5029],
        ["RangeError", "invalid array length", 5029],
        ["SyntaxError", "unterminated character class", 5019],
        ["SyntaxError", "quantifier without preceding atom", 5018],
        ["SyntaxError", "invalid range", 5021],
        ["SyntaxError", "pattern", 5017],
        ["SyntaxError", "", 1002]
    ];
    Object.defineProperty(Error.prototype, "number", {
        configurable: true,
        get: function () {
            var name = String(this.name), message = String(this.message);
            for (var i = 0; i < numbers.length; ++i)
                if (name === numbers[i][0] && message.indexOf(numbers[i][1]) >= 0)
                    return numbers[i][2] - 0x7FF60000;
            return 0;
        },
        set: function (value) { define(this, "number", value); }
    });
    Object.defineProperty(Error.prototype, "description", {
        configurable: true,
        get: function () { return this.message; },
        set: function (text) { define(this, "description", text); }
    });
})js";

}  // namespace orvo::script
