// orvo: the administrator's program.

#include <CLI/CLI.hpp>
#include <iostream>

#include "host/admin/directory_admin.h"
#include "host/admin/init_site.h"
#include "host/admin/texts.h"

namespace {

using namespace orvo::admin;

constexpr int failed = 1;
constexpr int misused = 2;

// The commands, and what they are called with.
struct CommandLine {
    CommandLine() {
        app.require_subcommand(1);
        directory->require_subcommand(1);
        for (CLI::App* command : {make, load, write, copy, check, show, set})
            command->add_option("STORE", store, "The directory's file")->required();

        make->add_option("--base", create.base, "The name of the entry at the top: o=Shop")
            ->required();
        make->add_option("--schema", create.schemas, "A further schema file, as OpenLDAP has them");
        make->add_flag("--no-standalone", create.without_standalone,
                       "Leave orvo-standalone.schema out, for cosine and inetorgperson");
        make->add_option("--access", create.access, "Other access rules than the product's");

        load->add_option("FILE", import.ldif, "The LDIF file; - is standard input")->required();
        load->add_flag("--dry-run", import.is_dry_run, "Only look whether it could be loaded");
        load->add_option("--hash-cost", import.hash_cost,
                         "What the hash of a password in clear text costs")
            ->check(
                CLI::Range(orvo::directory::HashCost::lowest, orvo::directory::HashCost::highest));

        write->add_option("FILE", target, "The new file; - is standard output")->required();
        copy->add_option("FILE", target, "The new file")->required();
        show->add_option("NAME", name, "The name of an entry; without it, a summary");

        start->add_option("--site", init.site, "The site's settings (site.ini)");
        start
            ->add_option("--data", init.data,
                         "The folder of the directory, where there are no settings yet")
            ->capture_default_str();
        start->add_option("--administrator", init.administrator, "The first user")
            ->capture_default_str();
        start->add_option("--owner", init.owner, "Whose files they are to be (root alone)");

        set->add_option("--access", change.access, "A file with access rules");
        set->add_option("--policy", policy,
                        "The password policy of users without one: a name, "
                        "or nothing (\"\")");
        constexpr std::size_t with_the_store = 2;
        set->require_option(with_the_store, 0);
    }

    // The exit code.
    int run() {
        if (*start) {
            init_site(init);
        } else if (*make) {
            create.store = store;
            create_store(create);
        } else if (*load) {
            import.store = store;
            import_ldif(import);
        } else if (*write) {
            export_ldif(store, target);
        } else if (*copy) {
            back_up(store, target);
        } else if (*check) {
            return check_store(store) ? 0 : failed;
        } else if (*show) {
            orvo::admin::show(store, name);
        } else {
            change.store = store;
            if (set->count("--policy") > 0) change.policy = policy;
            change_settings(change);
        }
        return 0;
    }

    CLI::App app{"Looks after the component's directory.", "orvo"};
    CLI::App* start = app.add_subcommand(
        "init", "Make a site's settings, embedded directory and first administrator");
    CLI::App* directory = app.add_subcommand("directory", "The embedded directory's file");
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

}  // namespace

int main(int count, char** words) {
    CommandLine line;
    try {
        line.app.parse(count, words);
    } catch (const CLI::ParseError& error) {
        return line.app.exit(error) == 0 ? 0 : misused;
    }
    try {
        const int code = line.run();
        if (!std::cout.flush()) throw std::runtime_error("standard output cannot be written");
        return code;
    } catch (const std::exception& failure) {
        std::cerr << "orvo: " << told(failure) << '\n';
        return failed;
    }
}
