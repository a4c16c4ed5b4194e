#include "host/admin/directory/directory_commands.h"

#include <memory>
#include <utility>

#include "host/admin/common/exit_codes.h"
#include "host/admin/common/program.h"
#include "host/admin/directory/directory_admin.h"

namespace orvo::admin {
namespace {

// What the commands with a name of their own for a file are called with.
struct Names {
    std::string store, target, entry;
};

class DirectoryCommands {
public:
    explicit DirectoryCommands(Program& program)
        : program_(program),
          group_(program.group(program, "directory", "The embedded directory's file")) {}

    void add_create() {
        const auto request = std::make_shared<CreateRequest>();
        CLI::App& create =
            add("create", "Make a new one", request->store, [request] { create_store(*request); });
        create.add_option("--base", request->base, "The name of the entry at the top: o=Shop")
            ->required()
            ->type_name("NAME");
        create
            .add_option("--schema", request->schemas, "A further schema file, as OpenLDAP has them")
            ->type_name("FILE");
        create.add_flag("--no-standalone", request->without_standalone,
                        "Leave orvo-standalone.schema out, for cosine and inetorgperson");
        create.add_option("--access", request->access, "Other access rules than the product's")
            ->type_name("FILE");
    }

    void add_import() {
        const auto request = std::make_shared<ImportRequest>();
        CLI::App& load = add("import", "Load an LDIF file, all of it or nothing", request->store,
                             [request] { import_ldif(*request); });
        load.add_option("FILE", request->ldif, "The LDIF file; - is standard input")->required();
        load.add_flag("--dry-run", request->is_dry_run, "Only look whether it could be loaded");
        load.add_option("--hash-cost", request->hash_cost,
                        "What the hash of a password in clear text costs")
            ->type_name("N")
            ->check(CLI::Range(directory::HashCost::lowest, directory::HashCost::highest));
    }

    void add_copies() {
        const auto names = std::make_shared<Names>();
        add("export", "Write all entries to an LDIF file", names->store,
            [names] { export_ldif(names->store, names->target); })
            .add_option("FILE", names->target, "The new file; - is standard output")
            ->required();
        add("backup", "Copy it while it is in use", names->store,
            [names] { back_up(names->store, names->target); })
            .add_option("FILE", names->target, "The new file")
            ->required();
    }

    void add_looks() {
        const auto names = std::make_shared<Names>();
        with_store(
            program_.command(group_, "check", "Look for damage; 1 where there is some",
                             [names] { return check_store(names->store) ? done : not_done; }),
            names->store);
        add("show", "Show an entry, or a summary", names->store, [names] {
            show(names->store, names->entry);
        }).add_option("NAME", names->entry, "The name of an entry; without it, a summary");
    }

    void add_set() {
        const auto request = std::make_shared<SetRequest>();
        CLI::App& set = add("set", "Change access rules and password policy", request->store,
                            [request] { change_settings(*request); });
        set.add_option("--access", request->access, "A file with access rules")->type_name("FILE");
        set.add_option("--policy", request->policy,
                       "The password policy of users without one: a name, or nothing (\"\")")
            ->type_name("NAME");
        constexpr std::size_t with_the_store = 2;
        set.require_option(with_the_store, 0);
    }

private:
    template <class File>
    static CLI::App& with_store(CLI::App& command, File& store) {
        command.add_option("STORE", store, "The directory's file")->required();
        return command;
    }
    template <class File, class Work>
    CLI::App& add(const std::string& name, const std::string& description, File& store, Work work) {
        return with_store(program_.command(group_, name, description,
                                           [work = std::move(work)] {
                                               work();
                                               return done;
                                           }),
                          store);
    }

    Program& program_;
    CLI::App& group_;
};

}  // namespace

void add_directory_commands(Program& program) {
    DirectoryCommands commands(program);
    commands.add_create();
    commands.add_import();
    commands.add_copies();
    commands.add_looks();
    commands.add_set();
}

}  // namespace orvo::admin
