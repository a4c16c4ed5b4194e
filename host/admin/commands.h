#pragma once

#include "host/admin/directory_admin.h"
#include "host/admin/init_site.h"
#include "host/common/command_line.h"

namespace orvo::admin {

// orvo's commands, and what they are called with.
struct Commands : CommandLine {
    Commands();

    // Runs the command that was read; the exit code.
    int run();

    CLI::App* start = add_subcommand(
        "init", "Make a site's settings, embedded directory and first administrator");
    CLI::App* directory = add_subcommand("directory", "The embedded directory's file");
    CLI::App* make = directory->add_subcommand("create", "Make a new one");
    CLI::App* load = directory->add_subcommand("import", "Load an LDIF file, all of it or nothing");
    CLI::App* write = directory->add_subcommand("export", "Write all entries to an LDIF file");
    CLI::App* copy = directory->add_subcommand("backup", "Copy it while it is in use");
    CLI::App* check = directory->add_subcommand("check", "Look for damage; 1 where there is some");
    CLI::App* show = directory->add_subcommand("show", "Show an entry, or a summary");
    CLI::App* set = directory->add_subcommand("set", "Change access rules and password policy");

    std::string store, target, name, policy;
    InitRequest init;
    CreateRequest create;
    ImportRequest import;
    SetRequest change;
};

}  // namespace orvo::admin
