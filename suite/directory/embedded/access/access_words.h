#pragma once

// The words of the rules' text, for its reader and its writer.

#include <string_view>

#include "suite/directory/embedded/access/access_rules.h"

namespace orvo::directory::embedded {

template <class Value>
struct AccessWord {
    std::string_view word;
    Value value;
};

inline constexpr AccessWord<Scope> scope_words[] = {
    {"base", Scope::base}, {"one", Scope::one_level}, {"subtree", Scope::subtree}};

inline constexpr AccessWord<Right> right_words[] = {{"none", Right::none},
                                                    {"authenticate", Right::authenticate},
                                                    {"read", Right::read},
                                                    {"write", Right::write}};

inline constexpr AccessWord<AccessGrant::To> whom_words[] = {
    {"name", AccessGrant::To::name},           {"self", AccessGrant::To::self},
    {"group", AccessGrant::To::group},         {"users", AccessGrant::To::users},
    {"anonymous", AccessGrant::To::anonymous}, {"everyone", AccessGrant::To::everyone}};

// The row of a word; null: there is none.
template <class Value, std::size_t size>
const AccessWord<Value>* find_word(const AccessWord<Value> (&words)[size], std::string_view word) {
    for (const AccessWord<Value>& row : words)
        if (row.word == word) return &row;
    return nullptr;
}

template <class Value, std::size_t size>
std::string_view word_of(const AccessWord<Value> (&words)[size], Value value) {
    for (const AccessWord<Value>& row : words)
        if (row.value == value) return row.word;
    return {};
}

}  // namespace orvo::directory::embedded
