#include <map>
#include <utility>

#include "suite/directory/embedded/access/access_view.h"
#include "suite/directory/embedded/directory/login.h"
#include "suite/directory/embedded/store/attribute_names.h"
#include "suite/directory/entries/search_condition.h"
#include "suite/directory/entries/searched_entry.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::embedded {
namespace {

// The filter's attributes are called as entries call them, and appended.
void prepare(Filter& filter, const AttributeTypes& types, std::vector<std::string>& attributes) {
    if (!filter.attribute.empty()) {
        filter.attribute = stored_name(filter.attribute, types);
        attributes.push_back(filter.attribute);
    }
    for (Filter& part : filter.parts) prepare(part, types, attributes);
}

// Evaluates a filter against what somebody may read of entries. What may not be read is, for the
// filter, an attribute that the directory does not know: not even its absence can be told.
class Condition {
public:
    Condition(SplitFilter split, const AttributeTypes& types,
              const std::vector<std::string>& attributes)
        : split_(std::move(split)), types_(types), attributes_(attributes) {}

    bool is_true_of(const EntryData& entry, const AccessView::Rights& rights) {
        const SearchedEntry searched(entry, types_, SearchedEntry::Names::preferred);
        const Matchers& matchers = matchers_for(rights);
        return matchers.sent.matches(searched) &&
               (matchers.kept.empty() || matchers.kept.front().matches(searched));
    }

private:
    struct Matchers {
        FilterMatcher sent;
        std::vector<FilterMatcher> kept;  // one or none
    };

    const Matchers& matchers_for(const AccessView::Rights& rights) {
        const auto known = matchers_.find(&rights);
        if (known != matchers_.end()) return known->second;
        const auto lookup = [this, &rights](Bounds bounds) {
            return [this, &rights, bounds](std::string_view attribute) {
                return may_read(attribute, rights) ? matching_of(attribute, types_, bounds)
                                                   : std::nullopt;
            };
        };
        Matchers made{FilterMatcher(split_.sent, lookup(Bounds::of_rules)), {}};
        if (split_.kept) made.kept.emplace_back(*split_.kept, lookup(Bounds::of_lists));
        return matchers_.emplace(&rights, std::move(made)).first->second;
    }
    bool may_read(std::string_view attribute, const AccessView::Rights& rights) const {
        for (std::size_t place = 0; place < attributes_.size(); ++place)
            if (ascii::equal_ignoring_case(attributes_[place], attribute))
                return rights.may_read[place];
        return true;  // of items without an attribute: they look at what is there
    }

    const SplitFilter split_;
    const AttributeTypes& types_;
    const std::vector<std::string>& attributes_;
    std::map<const AccessView::Rights*, Matchers> matchers_;
};

}  // namespace

void Login::search(const Search& search, const std::function<bool(EntryData&&)>& take) {
    const DistinguishedName base = parsed(search.base);
    const AttributeTypes& types = schema_->types;
    Selection selection{base, Scope::subtree, search.filter, {}, search.wanted};
    for (const std::string& attribute : search.attributes)
        selection.attributes.push_back(stored_name(attribute, types));
    prepare(selection.filter, types, selection.attributes);
    SplitFilter split = split_by_order(selection.filter, types);
    prepare(split.sent, types, selection.attributes);

    const Reading reading = directory_->read();
    const Identity who = identity(reading);
    require_unrestricted(reading, who);
    const auto rules = directory_->access_rules(reading);
    require_visible(reading, *rules, who, base);
    AccessView view(*rules, who, selection.attributes);
    Condition condition(std::move(split), types, selection.attributes);
    reading.search(selection, [&](EntryData&& entry) {
        const AccessView::Rights& rights = view.of(entry.name);
        if (!rights.may_see) return true;
        std::erase_if(entry.attributes, [&](const Attribute& attribute) {
            for (std::size_t place = 0; place < selection.attributes.size(); ++place)
                if (ascii::equal_ignoring_case(selection.attributes[place], attribute.name))
                    return !rights.may_read[place];
            return true;
        });
        return !condition.is_true_of(entry, rights) || take(std::move(entry));
    });
}

}  // namespace orvo::directory::embedded
