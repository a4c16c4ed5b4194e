#include "host/admin/people/attribute_changes.h"

#include <algorithm>
#include <stdexcept>

#include "host/admin/common/exit_codes.h"
#include "host/admin/common/texts.h"
#include "suite/directory/policy/password_attributes.h"

namespace orvo::admin {
namespace {

std::string lower(std::string text) {
    std::ranges::transform(text, text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    });
    return text;
}

void write(const detail::EntryAccess& entry, const AttributeChange& change) {
    if (change.values.empty())
        entry.clear(change.attribute);
    else
        entry.write(change.attribute, change.values);
}

}  // namespace

std::vector<AttributeChange> parse_assignments(const std::vector<std::string>& assignments) {
    std::vector<AttributeChange> changes;
    for (const std::string& assignment : assignments) {
        const std::size_t equals = assignment.find('=');
        if (equals == 0 || equals == std::string::npos)
            throw Misuse("'" + assignment + "' is not of the form attribute=value");
        const std::string name = assignment.substr(0, equals),
                          value = assignment.substr(equals + 1);
        if (directory::is_password(name))
            throw Misuse("a password is set with orvo users password");
        const auto known = std::ranges::find(
            changes, lower(name),
            [](const AttributeChange& change) { return lower(change.attribute); });
        if (known == changes.end()) {
            changes.push_back({name, {}});
            if (!value.empty()) changes.back().values.push_back(value);
        } else if (value.empty() || known->values.empty()) {
            throw Misuse("'" + name + "' is given with and without a value");
        } else {
            known->values.push_back(value);
        }
    }
    return changes;
}

void finish_new(const std::function<void()>& finish, const std::function<void()>& remove) {
    try {
        finish();
    } catch (const std::exception& refused) {
        try {
            remove();
        } catch (const std::exception& failure) {
            throw std::runtime_error(
                told(refused) + "; what was made could not be removed again: " + told(failure));
        }
        throw;
    }
}

void detail::change_all(const EntryAccess& entry, const std::vector<AttributeChange>& changes) {
    std::vector<AttributeChange> former;
    try {
        for (const AttributeChange& change : changes) {
            AttributeChange before{change.attribute, texts_of(entry.read(change.attribute))};
            write(entry, change);
            former.push_back(std::move(before));
        }
    } catch (const Error& refused) {
        try {
            while (!former.empty()) {
                write(entry, former.back());
                former.pop_back();
            }
        } catch (const Error& failure) {
            throw std::runtime_error(told(refused) +
                                     "; what was changed before could not be taken "
                                     "back, from " +
                                     former.back().attribute + " on: " + told(failure));
        }
        throw;
    }
}

}  // namespace orvo::admin
