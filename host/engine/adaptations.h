#pragma once

namespace orvo::script {

// What makes the language's own library fit for scripts that are limited. A function of the host's
// part: evaluate(text) runs a script's text among the globals, is_limited() tells whether there is
// a time limit. It is rewritten like any script, so its own loops look at the clock.
//
//  - eval and Function: only through `evaluate`, which rewrites what they take.
//  - Array's methods: their C loops cannot be broken off, so under a time limit they refuse arrays
//    of more than a million elements (a few bytes make billions of holes). Sorting is done here.
inline constexpr const char* adaptations = R"js(function (evaluate, is_limited) {
    var global = this, LanguageFunction = Function, is_array = Array.isArray;
    var most_elements = 1000000;
    function define(object, name, value) {
        Object.defineProperty(object, name, {value: value, writable: true, configurable: true});
    }

    define(global, "eval", function (text) {
        return typeof text === "string" ? evaluate(text) : text;
    });
    define(global, "Function", function () {
        var parts = Array.prototype.slice.call(arguments), body = parts.length ? parts.pop() : "";
        return evaluate("(function anonymous(" + parts.join(",") + "\n) {" + body + "\n})");
    });
    global.Function.prototype = LanguageFunction.prototype;
    define(LanguageFunction.prototype, "constructor", global.Function);

    function check(list) {
        if (list.length > most_elements && is_limited())
            throw new RangeError("more than a million elements under a time limit");
    }
    function order(a, b) {
        a = String(a);
        b = String(b);
        return a < b ? -1 : a > b ? 1 : 0;
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
    function sort(compare) {
        "use strict";
        if (compare !== undefined && typeof compare !== "function")
            throw new TypeError("a function is needed to compare by");
        var list = Object(this), length = list.length >>> 0, values = [], empty = 0, i;
        check(list);
        for (i = 0; i < length; ++i) {
            if (!(i in list)) continue;
            if (list[i] === undefined) ++empty;
            else values[values.length] = list[i];
        }
        for (var width = 1, other = []; width < values.length; width *= 2) {
            merged(values, other, width, compare || order);
            var swapped = values;
            values = other;
            other = swapped;
        }
        for (i = 0; i < values.length; ++i) list[i] = values[i];
        for (; empty > 0; --empty) list[i++] = undefined;
        for (; i < length; ++i) delete list[i];
        return list;
    }
    Object.getOwnPropertyNames(Array.prototype).forEach(function (name) {
        var original = Array.prototype[name];
        if (typeof original !== "function" || name === "constructor" || name === "push" ||
            name === "pop") return;
        define(Array.prototype, name, name === "sort" ? sort : function () {
            "use strict";
            if (this !== null && this !== undefined) check(this);
            for (var i = 0; i < arguments.length; ++i)
                if (is_array(arguments[i])) check(arguments[i]);
            return original.apply(this, arguments);
        });
    });

    ["Duktape", "CBOR", "Buffer", "TextEncoder", "TextDecoder", "performance"].forEach(
        function (name) { delete global[name]; });
    delete String.fromBufferRaw;

    define(Error.prototype, "number", 0);
    Object.defineProperty(Error.prototype, "description", {
        configurable: true,
        get: function () { return this.message; },
        set: function (text) { define(this, "description", text); }
    });
})js";

}  // namespace orvo::script
