#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <set>

#include "host/admin/common/progress_bar.h"
#include "host/admin/common/terminal.h"
#include "host/admin/common/texts.h"
#include "host/admin/directory/directory_admin.h"
#include "suite/directory/embedded/store/store.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/schema/entry_check.h"
#include "suite/directory/schema/equality.h"

namespace orvo::admin {
namespace {

using namespace directory;
using namespace directory::embedded;

// Which profiles there are, and which ones users belong to.
class ProfileReferences {
public:
    explicit ProfileReferences(const Schema& schema)
        : schema_(schema), common_name_(schema.types.find("cn")) {}

    void look_at(const EntryData& entry) {
        const ObjectClass* kind = structural_class(schema_, entry);
        const bool is_profile = kind && kind->name() == "orvoProfile";
        for (const Attribute& held : entry.attributes) {
            if (is_profile && held.name == "cn")
                for (const std::string& name : held.values) profiles_.insert(key(name));
            if (held.name == "ProfileCN" || held.name == "LocalAdminProfileCN")
                for (const std::string& name : held.values)
                    references_.try_emplace(key(name), quoted_name(entry.name) + " has the " +
                                                           held.name + " " + quoted_name(name));
        }
    }

    // The first entry of each profile that is not there.
    std::vector<std::string> missing() const {
        std::vector<std::string> missing;
        for (const auto& [profile, sentence] : references_)
            if (!profiles_.contains(profile))
                missing.push_back(sentence + ", which is no profile here.");
        return missing;
    }

private:
    std::string key(const std::string& name) const {
        return common_name_ ? equality_key(schema_, *common_name_, name) : name;
    }

    const Schema& schema_;
    const AttributeType* common_name_;
    std::set<std::string> profiles_;
    std::map<std::string, std::string> references_;
};

}  // namespace

void back_up(const std::filesystem::path& store, const std::filesystem::path& copy) {
    const std::shared_ptr<Store> opened = Store::open(store);
    std::optional<ProgressBar> bar;
    const Terminal terminal = Terminal::of_errors();
    if (terminal.is_there) bar.emplace(std::cerr, "Copying " + store.string(), terminal.width);
    opened->backup(copy, [&](int done, int all) {
        if (bar) bar->tell(static_cast<std::uint64_t>(done), static_cast<std::uint64_t>(all), {});
    });
    bar.reset();
    std::cout << copy.string() << ": a copy of " << store.string() << ".\n";
}

bool check_store(const std::filesystem::path& store) {
    const std::shared_ptr<Store> opened = Store::open(store);
    const std::shared_ptr<const Schema> schema = opened->schema();
    const Reading reading = opened->read();
    std::size_t problems = 0;
    const auto tell = [&](const std::string& problem) {
        ++problems;
        std::cout << printable(problem) << '\n';
    };
    for (const std::string& problem : reading.problems()) tell(problem);
    std::size_t entries = 0;
    ProfileReferences profiles(*schema);
    reading.every_entry([&](EntryData&& entry) {
        ++entries;
        profiles.look_at(entry);
        if (const Refusal refusal = check_entry(*schema, entry))
            tell(quoted_name(entry.name) + ": " + refusal.message + ".");
        return true;
    });
    for (const std::string& sentence : profiles.missing())
        std::cout << "Note: " << printable(sentence) << '\n';
    std::cout << store.string() << ": " << entries << " entries, "
              << (problems == 0 ? "no" : std::to_string(problems)) << " problems.\n";
    return problems == 0;
}

}  // namespace orvo::admin
