#include "suite/directory/ldap/provider/directory_maps.h"

#include <algorithm>
#include <ranges>
#include <utility>

#include "suite/configuration/loaded_files.h"
#include "suite/configuration/value_reference.h"
#include "suite/directory/map/map_reader.h"
#include "suite/directory/map/translation.h"
#include "suite/directory/names/written_name.h"

namespace orvo::directory::ldap {
namespace {

constexpr TextView membership = u"MEMBERSHIP";

std::optional<Text> site_value(const LoadedFile& file, TextView key) {
    const Text* value = file.values->find(membership, key);
    if (!value) return std::nullopt;
    return referred_value(*value, file.path.parent_path());
}

}  // namespace

void DirectoryMaps::read_files(std::uint64_t generation) {
    sites_.clear();
    for (const LoadedFile& file : loaded_files()) {
        Site site;
        try {
            const std::optional<Text> server = site_value(file, u"LDAPServer");
            if (!server) continue;
            site.server = *server;
            const auto root =
                DistinguishedName::try_parse(site_value(file, u"LDAPRoot").value_or(u""));
            if (root) site.root = *root;
        } catch (const Failure&) {
            continue;  // who reads the value is told
        }
        try {
            site.map = read_map(file.path, *file.values);
        } catch (const Failure& failure) {
            site.refusal = failure;
        }
        sites_.push_back(std::move(site));
    }
    is_empty_ = std::ranges::none_of(
        sites_, [](const Site& site) { return site.map || site.refusal.has_value(); });
    generation_ = generation;
}

std::shared_ptr<const DirectoryMap> DirectoryMaps::find(TextView server, TextView container) {
    const std::uint64_t generation = loaded_files_generation();
    if (generation_ == generation && is_empty_) return nullptr;
    const std::lock_guard lock(mutex_);
    if (generation_ != generation) read_files(generation);
    if (is_empty_) return nullptr;
    const auto name = DistinguishedName::try_parse(container_name(container));
    if (!name) return nullptr;
    for (const Site& site : sites_ | std::views::reverse) {
        const bool is_its = *name == site.root || name->is_below(site.root);
        if (site.server != server || !is_its) continue;
        if (site.refusal) throw *site.refusal;
        return site.map;
    }
    return nullptr;
}

std::shared_ptr<const AttributeTypes> DirectoryMaps::types_of(
    const std::shared_ptr<const ServerFacts>& facts) {
    const std::lock_guard lock(mutex_);
    std::erase_if(types_, [](const Types& kept) { return kept.server.expired(); });
    for (const Types& kept : types_)
        if (kept.server.lock() == facts) return kept.types;
    types_.push_back({facts, std::make_shared<const AttributeTypes>(with_our_types(facts->types))});
    return types_.back().types;
}

}  // namespace orvo::directory::ldap
