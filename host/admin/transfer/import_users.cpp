#include <algorithm>
#include <iostream>
#include <map>
#include <optional>
#include <unordered_map>

#include "host/admin/common/component_failure.h"
#include "host/admin/common/exit_codes.h"
#include "host/admin/common/input_file.h"
#include "host/admin/common/names.h"
#include "host/admin/common/output.h"
#include "host/admin/common/progress_bar.h"
#include "host/admin/common/site.h"
#include "host/admin/common/site_settings.h"
#include "host/admin/common/terminal.h"
#include "host/admin/common/texts.h"
#include "host/admin/people/attribute_changes.h"
#include "host/admin/people/entry_values.h"
#include "host/admin/transfer/import_source.h"
#include "host/admin/transfer/kept_values.h"
#include "host/admin/transfer/new_users.h"
#include "host/admin/transfer/refused_rows.h"
#include "host/admin/transfer/transfer.h"
#include "suite/directory/names/ascii.h"

namespace orvo::admin {
namespace {

struct Refused : std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class Outcome { made, changed, unchanged };

class Import {
public:
    Import(const ImportUsersRequest& request, const Site& site)
        : request_(request),
          site_(site),
          place_{site.info().GetUserNamingAttribute().to<std::string>(),
                 site.info().GetUserContainer().to<std::string>()},
          members_(site.members()),
          new_users_(site),
          has_map_(has_map(site.file())) {}

    int run() {
        InputFile file(request_.file);
        std::optional<ProgressBar> bar;
        const Terminal terminal = Terminal::of_errors();
        if (terminal.is_there && !request_.common.is_quiet && !request_.is_dry_run)
            bar.emplace(std::cerr, "Importing " + file.name(), terminal.width);
        RefusedRows refused(request_.refused, file.name());
        std::int64_t line = 0;
        try {
            const auto source = open_import(file.stream(), place_);
            while (const std::optional<ImportRow> row = source->next()) {
                line = row->line;
                take(*row, *source, refused, bar);
                if (bar) bar->tell(file.position(), file.size(), counted(refused));
            }
        } catch (const std::exception& failure) {
            bar.reset();
            throw std::runtime_error(where(file, failure, line) + told(failure) + "; " +
                                     counted(refused) + " before that; run it again to go on");
        }
        bar.reset();
        if (!request_.common.is_quiet)
            put(std::cout, file.name() + ": " + counted(refused) + ".\n");
        if (refused.count() == 0) return done;
        return count_[Outcome::made] + count_[Outcome::changed] + count_[Outcome::unchanged] > 0
                   ? partly_done
                   : not_done;
    }

private:
    // What is wrong with the file itself tells its line already.
    static std::string where(const InputFile& file, const std::exception& failure,
                             std::int64_t line) {
        const bool is_of_directory = is_of_whole_directory(failure);
        return file.name() +
               (is_of_directory ? ", line " + std::to_string(line) + ": " : std::string(", "));
    }

    void take(const ImportRow& row, const ImportSource& source, RefusedRows& refused,
              std::optional<ProgressBar>& bar) {
        std::string what;
        try {
            what = carry_out(row);
        } catch (const std::exception& failure) {
            if (is_of_whole_directory(failure)) throw;
            if (bar) bar->clear();
            refused.add(row, source, told(failure));
            return;
        }
        if (request_.is_dry_run)
            put(std::cout, "line " + std::to_string(row.line) + ": " + printable(row.name) + ": " +
                               what + "\n");
    }

    // What was or would be done.
    std::string carry_out(const ImportRow& row) {
        if (!row.fault.empty()) throw Refused(row.fault);
        const auto [first, is_new] = lines_.try_emplace(row.name, row.line);
        if (!is_new) throw Refused("line " + std::to_string(first->second) + " has this user, too");
        const auto result = [&](Outcome outcome, std::string what) {
            ++count_[outcome];
            return what;
        };
        const bool makes = request_.creates && !request_.is_dry_run;
        // Whoever is there often comes in a row, as when an import is run again.
        if (makes && !was_there_ && try_make(row)) return result(Outcome::made, "made");
        const auto changes = try_changes(row);
        was_there_ = changes.has_value();
        if (changes && changes->empty()) return result(Outcome::unchanged, "is as it should be");
        if (changes) return result(Outcome::changed, change(row.name, *changes));
        if (!request_.creates) throw Refused("there is no such user");
        if (!makes) return result(Outcome::made, "would be made");
        if (!try_make(row)) throw Refused("there is an entry of that name that is no user");
        return result(Outcome::made, "made");
    }

    // False where somebody of that name is there.
    bool try_make(const ImportRow& row) {
        try {
            new_users_.make(row.name, row.password, row.attributes);
        } catch (const Error& failure) {
            if (!is_existing_entry(failure)) throw;
            return false;
        }
        if (has_map_) finish_mapped(row);
        return true;
    }

    // What a directory with a map keeps elsewhere, in groups say, is not in a new entry yet.
    void finish_mapped(const ImportRow& row) {
        std::vector<AttributeChange> missing;
        const auto entry = [&] { return site_.user_attributes(row.name); };
        finish_new(
            [&] {
                missing = try_changes(row).value_or(missing);
                change_attributes(entry(), missing);
            },
            [&] {
                // Nobody who is made later under this name is to be in these groups.
                const LdapAccess refused = entry();
                for (const AttributeChange& one : missing)
                    if (!texts_of(refused.GetAttribValue(one.attribute)).empty())
                        refused.ClearAttribValue(one.attribute);
                members_.DeleteUser(row.name);
            });
    }

    std::string change(const std::string& name, const std::vector<AttributeChange>& changes) {
        std::string attributes;
        for (const AttributeChange& one : changes)
            attributes += (attributes.empty() ? "" : ", ") + one.attribute;
        if (!request_.updates)
            throw Refused("is there, with other values: " + attributes +
                          " (--update would change them)");
        if (!request_.is_dry_run) change_attributes(site_.user_attributes(name), changes);
        return "would get other values: " + attributes;
    }

    // What the user has otherwise than the row; nothing where there is no such user.
    std::optional<std::vector<AttributeChange>> try_changes(const ImportRow& row) {
        std::vector<std::string> columns{place_.naming_attribute};
        for (const directory::Attribute& attribute : row.attributes)
            columns.push_back(attribute.name);
        const std::vector<std::string> items{place_.naming_attribute + "=" +
                                             as_filter_value(row.name)};
        const RecordSet found = members_.GetOrvoUsersEx(items, columns, {}, std::int16_t{1});
        if (found.size() == 0) return {};
        std::vector<AttributeChange> changes;
        const Row known = *found.begin();
        for (std::size_t i = 0; i < row.attributes.size(); ++i) {
            const auto& [name, values] = row.attributes[i];
            if (!are_same(name, texts_of(known[i + 1]), values)) changes.push_back({name, values});
        }
        return changes;
    }

    bool are_same(const std::string& attribute, std::vector<std::string> is,
                  std::vector<std::string> shall_be) {
        std::ranges::sort(is);
        std::ranges::sort(shall_be);
        if (is == shall_be) return true;
        if (!kept_) kept_.emplace(site_.file());
        return kept_->are_same(attribute, is, shall_be);
    }

    std::string counted(const RefusedRows& refused) const {
        const auto number = [&](Outcome outcome) {
            const auto found = count_.find(outcome);
            return std::to_string(found == count_.end() ? 0 : found->second);
        };
        const std::string would = request_.is_dry_run ? "would be " : "";
        return number(Outcome::made) + " " + would + "made, " + number(Outcome::changed) + " " +
               would + "changed, " + number(Outcome::unchanged) + " unchanged, " +
               std::to_string(refused.count()) + " refused";
    }

    const ImportUsersRequest& request_;
    const Site& site_;
    const UserPlace place_;
    const Members members_;
    const NewUsers new_users_;
    const bool has_map_;
    std::optional<KeptValues> kept_;  // since values were written differently
    bool was_there_ = false;          // the user before
    std::map<Outcome, std::int64_t> count_;
    std::unordered_map<std::string, std::int64_t, directory::ascii::HashIgnoringCase,
                       directory::ascii::EqualIgnoringCase>
        lines_;
};

}  // namespace

int import_users(const ImportUsersRequest& request) {
    const Site site(request.common.site);
    return Import(request, site).run();
}

}  // namespace orvo::admin
