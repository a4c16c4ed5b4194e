#pragma once

// `orvo directory`: what an administrator does with the file of an embedded directory. Each
// function is one command, prints what it has done to standard output, and raises std::exception
// with what went wrong; nothing is half done then. Standard error is for progress.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "suite/directory/policy/password_hash.h"

namespace orvo::admin {

struct CreateRequest {
    std::filesystem::path store;
    std::string base;                                 // "o=Shop"
    std::vector<std::filesystem::path> schemas = {};  // beside the product's own
    // Without orvo-standalone.schema, whose Manager is another one than that of cosine.
    bool without_standalone = false;
    std::filesystem::path access = {};  // the text of the access rules; empty: the product's
};
void create_store(const CreateRequest& request);
// The same, and prints nothing.
void make_store(const CreateRequest& request);

struct ImportRequest {
    std::filesystem::path store;
    std::filesystem::path ldif;  // "-": standard input
    bool is_dry_run = false;
    int hash_cost = directory::HashCost::usual;  // of passwords in clear text
};
void import_ldif(const ImportRequest& request);

// To a new file of mode 0600, or to standard output where `ldif` is "-", unless that is a terminal:
// password hashes are no sight for one.
void export_ldif(const std::filesystem::path& store, const std::filesystem::path& ldif);

void back_up(const std::filesystem::path& store, const std::filesystem::path& copy);

// Prints what is wrong. Whether nothing is.
bool check_store(const std::filesystem::path& store);

// An entry, without its passwords, or with an empty name the whole directory in a few lines.
void show(const std::filesystem::path& store, const std::string& name);

struct SetRequest {
    std::filesystem::path store;
    std::filesystem::path access;       // a text of access rules; empty: as they are
    std::optional<std::string> policy;  // the name of the usual password policy; empty: none
};
void change_settings(const SetRequest& request);

}  // namespace orvo::admin
