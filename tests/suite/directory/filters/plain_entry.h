#pragma once

#include <string>
#include <utility>
#include <vector>

#include "suite/directory/filters/filter_match.h"
#include "suite/directory/names/ascii.h"

namespace orvo::directory {

// An entry as lists of attributes, whose names are the same without regard to case only.
struct PlainEntry : MatchedEntry {
    using Attributes = std::vector<std::pair<std::string, std::vector<std::string>>>;

    explicit PlainEntry(Attributes attributes, Attributes name = {})
        : attributes_(std::move(attributes)), name_(std::move(name)) {}

    void append_values(std::string_view attribute,
                       std::vector<std::string_view>& values) const override {
        append(attributes_, attribute, values);
    }
    void append_attributes(std::vector<std::string_view>& names) const override {
        for (const auto& [name, values] : attributes_) names.push_back(name);
    }
    void append_name_values(std::string_view attribute,
                            std::vector<std::string_view>& values) const override {
        append(name_, attribute, values);
    }
    void append_name_attributes(std::vector<std::string_view>& names) const override {
        for (const auto& [name, values] : name_) names.push_back(name);
    }

private:
    static void append(const Attributes& from, std::string_view attribute,
                       std::vector<std::string_view>& values) {
        for (const auto& [name, held] : from)
            if (ascii::equal_ignoring_case(name, attribute))
                values.insert(values.end(), held.begin(), held.end());
    }

    Attributes attributes_;
    Attributes name_;
};

}  // namespace orvo::directory
