#include "host/admin/transfer/kept_values.h"

#include <algorithm>

#include "host/admin/common/site_settings.h"
#include "host/admin/diagnosis/account_source.h"
#include "host/admin/diagnosis/content_steps.h"
#include "platform/values/failure.h"
#include "suite/directory/filters/matching_rule.h"
#include "suite/directory/map/translation.h"
#include "suite/directory/schema/attribute_values.h"

namespace orvo::admin {
namespace {

using namespace directory;

AttributeTypes types_of(const SiteSettings& site) {
    if (!try_provider_of(site)) return with_our_types({});
    return open_accounts(site)->types();
}

// As the provider writes it.
std::vector<std::string> written(const AttributeType& type, const std::string& value) {
    if (type.syntax == Syntax::text || type.syntax == Syntax::bytes) return {value};
    try {
        return encode_values(&type, from_utf8(value));
    } catch (const Failure&) {  // none of the type's: the directory says so when it is written
        return {value};
    }
}

std::string in_one_form(const AttributeType& type, const std::string& value) {
    if (type.syntax == Syntax::time) {
        const auto date = try_date(value);
        return date ? generalized_time(*date) : value;
    }
    if (matching_rule_of(type) == MatchingRule::distinguished_name)
        return matching_key(MatchingRule::distinguished_name, value).value_or(value);
    return value;
}

}  // namespace

KeptValues::KeptValues(const std::filesystem::path& site)
    : types_(std::make_unique<const AttributeTypes>(types_of(read_site_settings(site)))) {}

KeptValues::~KeptValues() = default;

std::vector<std::string> KeptValues::kept(const std::string& attribute,
                                          const std::vector<std::string>& values) const {
    const AttributeType* type = types_->find(attribute);
    std::vector<std::string> kept;
    for (const std::string& value : values) {
        if (value.empty()) continue;  // a directory keeps none
        if (!type) {
            kept.push_back(value);
            continue;
        }
        for (const std::string& one : written(*type, value))
            kept.push_back(in_one_form(*type, one));
    }
    std::ranges::sort(kept);
    return kept;
}

bool KeptValues::are_same(const std::string& attribute, const std::vector<std::string>& one,
                          const std::vector<std::string>& other) const {
    return kept(attribute, one) == kept(attribute, other);
}

}  // namespace orvo::admin
