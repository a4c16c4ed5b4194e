#include "host/admin/transfer/transfer_commands.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "host/admin/common/program.h"
#include "host/admin/transfer/transfer.h"

namespace orvo::admin {
namespace {

void add_import(Program& program) {
    struct Given {
        ImportUsersRequest request;
        bool creates = false;
    };
    const auto given = std::make_shared<Given>();
    CLI::App& command = program.command(program, "import",
                                        "Make and change users by a file: CSV, or LDIF", [given] {
                                            ImportUsersRequest& request = given->request;
                                            // Without either, who is not there is made.
                                            request.creates = given->creates || !request.updates;
                                            return import_users(request);
                                        });
    ImportUsersRequest& request = given->request;
    command
        .add_option("FILE", request.file,
                    "Of a CSV file the first line has the attributes' names; - is standard input")
        ->required();
    command.add_flag("--create", given->creates, "Make who is not there (the default)");
    command.add_flag("--update", request.updates, "Change who is there with other values");
    command.add_flag("--dry-run", request.is_dry_run, "Only say what would be done, line by line");
    command
        .add_option(
            "--refused", request.refused,
            "A new file for the refused rows with their lines and reasons: corrected, it is "
            "imported as it is")
        ->type_name("FILE");
    add_common_options(command, request.common);
}

void add_export(Program& program) {
    const auto request = std::make_shared<ExportUsersRequest>();
    request->rows.format = Format::csv;
    CLI::App& command =
        program.command(program, "export", "Write all users to a file, without passwords",
                        [request] { return export_users(*request); });
    command.add_option("FILE", request->file, "The new file; - is standard output")->required();
    add_row_options(command, request->rows);
    add_common_options(command, request->common);
}

}  // namespace

void add_transfer_commands(Program& program) {
    add_import(program);
    add_export(program);
}

}  // namespace orvo::admin
