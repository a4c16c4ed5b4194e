#include "suite/configuration/section_value.h"

#include "platform/values/environment.h"
#include "platform/values/variant.h"
#include "suite/configuration/ini_files.h"
#include "suite/configuration/nearest_name.h"
#include "suite/configuration/suite_configuration.h"
#include "suite/configuration/value_reference.h"

namespace orvo {

SectionValue::SectionValue(const IniKey& key, const std::filesystem::path& site_file)
    : key_(key), site_file_(site_file), text_(referred()) {}

std::filesystem::path SectionValue::file() const {
    if (text_.empty()) refuse(u"it names no file");
    return site_file_.parent_path() / path_of(text_);
}

bool SectionValue::is_yes() const {
    if (equal_ignoring_case(text_, u"yes")) return true;
    if (!equal_ignoring_case(text_, u"no"))
        refuse(u"\"" + text_ + u"\" is neither \"yes\" nor \"no\"");
    return false;
}

std::int64_t SectionValue::number(std::int64_t least, std::int64_t most) const {
    const bool is_number =
        !text_.empty() && text_.size() <= 15 &&
        std::ranges::all_of(text_, [](char16_t c) { return c >= u'0' && c <= u'9'; });
    const auto number = is_number ? Variant(text_).to<std::int64_t>() : 0;
    if (!is_number || number < least || number > most)
        refuse(u"\"" + text_ + u"\" is no number from " + decimal(least) + u" to " + decimal(most));
    return number;
}

void SectionValue::refuse(const Text& reason) const {
    throw Failure(configuration_error::malformed_file, Text(configuration_source),
                  text_of(site_file_) + u":" + decimal(key_.line) + u": [" + key_.section + u"] " +
                      key_.name + u": " + reason);
}

void SectionValue::refuse_name(std::span<const TextView> names) const {
    const TextView nearest = nearest_name(key_.name, names);
    refuse(u"there is no such key" +
           (nearest.empty() ? Text() : u"; did you mean \"" + Text(nearest) + u"\"?"));
}

Text SectionValue::referred() const {
    try {
        return referred_value(key_.value, site_file_.parent_path());
    } catch (const Failure& failure) {
        refuse(failure.description);
    }
}

SiteFile load_site_file() {
    SiteFile site{usual_site_file(), nullptr};
    std::error_code error;
    if (!environment_variable("ORVO_SITE_CONFIG").empty() ||
        std::filesystem::status(site.name, error).type() != std::filesystem::file_type::not_found)
        site.values = load_ini_file(site.name);
    return site;
}

}  // namespace orvo
