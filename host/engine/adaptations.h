#pragma once

namespace orvo::script {

// What makes the language's own library fit for scripts. present(function, name, length) gives a
// function the looks of one of the language's own. It is rewritten like any script, so its own
// loops look at the clock.
//
//  - sort: the language's own leaves what compares as equal in any order; here its order is kept.
inline constexpr const char* adaptations = R"js(function (present) {
    var global = this;
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
