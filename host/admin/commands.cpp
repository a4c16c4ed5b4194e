#include "host/admin/commands.h"

namespace orvo::admin {

Commands::Commands() : CommandLine("orvo", "Looks after the component's directory.") {
    require_subcommand(1);
    directory->require_subcommand(1);
    for (CLI::App* command : {make, load, write, copy, check, show, set})
        command->add_option("STORE", store, "The directory's file")->required();

    make->add_option("--base", create.base, "The name of the entry at the top: o=Shop")
        ->required()
        ->type_name("NAME");
    make->add_option("--schema", create.schemas, "A further schema file, as OpenLDAP has them")
        ->type_name("FILE");
    make->add_flag("--no-standalone", create.without_standalone,
                   "Leave orvo-standalone.schema out, for cosine and inetorgperson");
    make->add_option("--access", create.access, "Other access rules than the product's")
        ->type_name("FILE");

    load->add_option("FILE", import.ldif, "The LDIF file; - is standard input")->required();
    load->add_flag("--dry-run", import.is_dry_run, "Only look whether it could be loaded");
    load->add_option("--hash-cost", import.hash_cost,
                     "What the hash of a password in clear text costs")
        ->type_name("N")
        ->check(CLI::Range(orvo::directory::HashCost::lowest, orvo::directory::HashCost::highest));

    write->add_option("FILE", target, "The new file; - is standard output")->required();
    copy->add_option("FILE", target, "The new file")->required();
    show->add_option("NAME", name, "The name of an entry; without it, a summary");

    start->add_option("--site", init.site, "The site's settings (site.ini)")->type_name("FILE");
    start
        ->add_option("--data", init.data,
                     "The folder of the directory, where there are no settings yet")
        ->capture_default_str()
        ->type_name("FOLDER");
    start->add_option("--administrator", init.administrator, "The first user")
        ->capture_default_str()
        ->type_name("NAME");
    start->add_option("--owner", init.owner, "Whose files they are to be (root alone)")
        ->type_name("USER");

    set->add_option("--access", change.access, "A file with access rules")->type_name("FILE");
    set->add_option("--policy", policy,
                    "The password policy of users without one: a name, "
                    "or nothing (\"\")")
        ->type_name("NAME");
    constexpr std::size_t with_the_store = 2;
    set->require_option(with_the_store, 0);

    footer(
        "Each command has a --help of its own.\n"
        "\n"
        "Exit status:\n"
        "  0  it is done\n"
        "  1  it is not, and standard error says why\n"
        "  2  orvo was called in a wrong way");
}

int Commands::run() {
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
        return check_store(store) ? 0 : 1;
    } else if (*show) {
        orvo::admin::show(store, name);
    } else {
        change.store = store;
        if (set->count("--policy") > 0) change.policy = policy;
        change_settings(change);
    }
    return 0;
}

}  // namespace orvo::admin
