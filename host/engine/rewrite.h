#pragma once

#include <string>
#include <string_view>

#include "host/engine/lexer.h"

namespace orvo::script {

// The names that rewriting adds; scripts may not use any that begin so.
inline constexpr std::string_view reserved_prefix = "__orvo_";
// function (): how many rounds of a loop may go by until the next call, or a failure once the
// script has to end.
// A property of numbers, too: reading it is the same call, and no object of a `with` statement can
// stand before it.
inline constexpr const char* tick_name = "__orvo_tick";
// function (callee, member name or null, arguments): an object whose property `value` is what the
// call reads and what an assignment to the call writes.
inline constexpr const char* slot_name = "__orvo_slot";
// function (text): the name eval, when it is read next, is the language's own function.
inline constexpr const char* evaluate_name = "__orvo_eval";
// function (eval): the text, rewritten if that is the language's own function.
inline constexpr const char* text_name = "__orvo_text";

// What a script is turned into before it is compiled; every line stays the line that it was.
//
//  - each loop, function, catch and finally asks now and then whether the script may go on:
//      while (x)              while (--__orvo_n<0&&(__orvo_n=__orvo_tick()),x)   in a function
//                             while (__orvo_tick(),x)                            outside
//      function f() {         function f() {var __orvo_n=__orvo_tick();
//      for (k in o) a         for (k in __orvo_tick(),o) __orvo_tick(),a
//      catch (e) {            catch (e) {if(__orvo_tick());
//    behind the word "with", where names may be those of any object's members:
//      while (x)              while ((0).__orvo_tick,x)
//  - an assignment to a call becomes one to a slot:
//      o.Item("k") = v        __orvo_slot(o,"Item",["k"]).value = v
//      Session("n")++         __orvo_slot(Session,null,["n"]).value++
//  - a call of eval rewrites what it evaluates:
//      eval(a)                (__orvo_eval(a),eval(__orvo_text(eval)))
//
// Raises SyntaxProblem for an assignment that cannot be turned, for a text or comment without end
// and for brackets that do not match; all other mistakes are left to the compiler.
// within: whether the text is part of another one, which may have a `with` around it.
enum class Within { nothing, other_text };
std::string rewritten(std::string_view source, Within within = Within::nothing);

}  // namespace orvo::script
