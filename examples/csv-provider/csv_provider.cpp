// A directory provider of one's own: users in a CSV file, read only (docs/extending.md).

#include <crypt.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "component/provider/directory_contract.h"
#include "platform/module/module.h"
#include "platform/objects/recordset/builder.h"

using namespace orvo;

namespace {

constexpr auto wrong_credentials = error_number(0x8007052E), no_entry = error_number(0x80072030),
               unreachable = error_number(0x8007203A), refused = error_number(0x80072035),
               bad_filter = error_number(0x8007203E);

[[noreturn]] void fail(std::int32_t number, const Text& why) { throw Failure(number, {}, why); }

// The file: names of attributes in its first line, an entry in each further one, ";" between the
// columns and "|" between the values of one attribute. The column "dn" has the full name.
struct Entry {
    std::vector<Text> columns, cells;

    std::vector<Text> values(TextView attribute) const {
        for (std::size_t i = 0; i < std::min(columns.size(), cells.size()); ++i)
            if (equal_ignoring_case(columns[i], attribute)) return split(cells[i], u"|");
        return {};
    }
    Text dn() const { return lower(values(u"dn").at(0)); }
};

std::vector<Entry> read_entries(const Text& file) {
    std::ifstream lines{std::filesystem::path(file)};
    std::string line;
    if (!std::getline(lines, line)) fail(unreachable, file + u" cannot be read.");
    const std::vector<Text> columns = split(from_utf8(line), u";");
    std::vector<Entry> entries;
    while (std::getline(lines, line))
        if (Entry entry{columns, split(from_utf8(line), u";")}; !entry.values(u"dn").empty())
            entries.push_back(std::move(entry));
    return entries;
}

// The password column holds what crypt(3) makes: "$6$salt$hash".
bool has_password(const Entry& entry, const Secret& password) {
    const std::vector<Text> hashes = entry.values(u"userPassword");
    // crypt(3) would take what stands before a NUL for the whole.
    const bool is_whole = password.reveal().find('\0') == std::string_view::npos;
    if (hashes.empty() || password.empty() || !is_whole) return false;
    const std::string hash = to_utf8(hashes[0]);
    crypt_data memory{};
    const char* made = crypt_rn(password.reveal().data(), hash.c_str(), &memory, sizeof memory);
    const bool is_right = made && hash == made;
    overwrite(&memory, sizeof memory);
    return is_right;
}

const Entry* find(const std::vector<Entry>& entries, const Text& dn) {
    for (const Entry& entry : entries)
        if (equal_ignoring_case(entry.dn(), dn)) return &entry;
    return nullptr;
}

// What the file has, for somebody whom it knows.
std::vector<Entry> entries_for(const Text& file, const Text& user, const Secret& password) {
    std::vector<Entry> entries = read_entries(file);
    const Entry* found = find(entries, user);
    if (!found || !has_password(*found, password))
        fail(wrong_credentials, u"The user name or the password is wrong.");
    return entries;
}

// "j*n" and the like, without regard to case; "*" alone asks whether there is a value.
bool is_like(TextView value, TextView pattern) {
    const auto star = pattern.find(u'*');
    if (star == TextView::npos) return equal_ignoring_case(value, pattern);
    if (value.size() < star || !equal_ignoring_case(value.substr(0, star), pattern.substr(0, star)))
        return false;
    for (std::size_t at = star; at <= value.size(); ++at)
        if (is_like(value.substr(at), pattern.substr(star + 1))) return true;
    return false;
}

// Whether an entry meets the filter that `rest` begins with, which is taken off it: "&", "|", "!",
// "=" with "*", ">=" and "<=". Every entry is of every class.
bool meets(const Entry& entry, TextView& rest) {
    const auto skip = [&](TextView signs) {
        rest.remove_prefix(std::min(rest.find_first_not_of(signs), rest.size()));
    };
    if (!rest.starts_with(u'(')) fail(bad_filter, u"The filter cannot be read.");
    rest.remove_prefix(1);
    const char16_t sign = rest.empty() ? u' ' : rest[0];
    const bool is_sign = sign == u'&' || sign == u'|' || sign == u'!';
    if (is_sign) rest.remove_prefix(1);
    skip(u" ");
    if (is_sign && rest.starts_with(u'(')) {
        bool all = true, any = false;
        for (; rest.starts_with(u'('); skip(u" ")) {
            const bool one = meets(entry, rest);
            all &= one;
            any |= one;
        }
        if (!rest.starts_with(u')')) fail(bad_filter, u"The filter cannot be read.");
        rest.remove_prefix(1);
        return sign == u'&' ? all : sign == u'|' ? any : !all;
    }
    const TextView item = rest.substr(0, rest.find(u')'));
    const auto equals = item.find(u'=');
    if (item.size() == rest.size() || equals == 0 || equals == TextView::npos)
        fail(bad_filter, u"The filter cannot be read.");
    rest.remove_prefix(item.size() + 1);
    const char16_t before = item[equals - 1];
    const bool is_order = before == u'<' || before == u'>';
    const Text attribute = trimmed(item.substr(0, equals - (is_order ? 1 : 0)));
    const Text wanted = trimmed(item.substr(equals + 1));
    if (equal_ignoring_case(attribute, u"objectClass")) return true;
    const bool found = std::ranges::any_of(entry.values(attribute), [&](const Text& value) {
        if (!is_order) return is_like(value, wanted);
        const int order = compare_ignoring_case(value, wanted);
        return before == u'<' ? order <= 0 : order >= 0;
    });
    return found != (sign == u'!');  // the component writes "(! cn=a)", too
}

class CsvEntry final : public DirectoryEntry {
public:
    void Bind(Text& server, Text& container, Text& common_name, Text& user, Secret& password,
              Variant&) override {
        const std::vector<Entry> entries = entries_for(server, user, password);
        entry_ = {};
        if (common_name.empty()) return;  // the container itself, which has no line of its own
        const Entry* found = find(entries, common_name + u"," + container);
        if (!found) fail(no_entry, u"There is no " + common_name + u" in " + container + u".");
        entry_ = *found;
    }
    Variant GetValues(Text& name) override {
        Values values;
        for (const Text& value : entry_.values(name)) values.push_back(value);
        if (values.count() == 0) values.push_back(Variant());
        return values;
    }
    void SetValues(Text&, Variant&) override { refuse(); }
    void ClearValues(Text&) override { refuse(); }
    void CreateChild(Variant&, Text&, Object&) override { refuse(); }
    void DeleteChild(Text&, Text&) override { refuse(); }
    Boolean InitializeConnectionPool(Variant&, Variant&) override { return true; }
    Boolean InitializeCache(Variant&, Variant&) override { return true; }

private:
    [[noreturn]] static void refuse() { fail(refused, u"This directory can only be read."); }

    Entry entry_;
};

class CsvSearch final : public DirectorySearch {
public:
    void Connect(Text& server, Text& container, Text& user, Secret& password) override {
        below_ = u"," + lower(container);
        entries_ = entries_for(server, user, password);
    }
    Object Execute(Text& filter, Variant& attributes, std::int32_t maximum) override {
        std::vector<Text> columns;
        for (const Variant& name : attributes.to<Values>()) columns.push_back(name.to<Text>());
        RecordSetBuilder builder(columns);
        for (std::int32_t rows = 0; const Entry& entry : entries_) {
            TextView rest = filter;
            if (!entry.dn().ends_with(below_) || !meets(entry, rest)) continue;
            std::vector<Variant> row;
            for (const Text& column : columns) {
                const std::vector<Text> values = entry.values(column);
                Values all;
                for (const Text& value : values) all.push_back(value);
                row.push_back(values.empty() ? Variant() : values.size() == 1 ? all[0] : all);
            }
            builder.add(std::move(row));
            if (++rows == maximum) break;
        }
        return builder.open().object();
    }

private:
    Text below_;
    std::vector<Entry> entries_;
};

class CsvValidator final : public DirectoryValidator {
public:
    void Open(Text& server, Text&) override { server_ = server; }
    std::int32_t Validate(Variant& path, Variant& password) override {
        const std::vector<Entry> entries = read_entries(server_);
        const Entry* found = find(entries, path.to<Text>());
        return found && has_password(*found, password.to<Secret>()) ? 0 : -1;
    }

private:
    Text server_;
};

class CsvSchema final : public DirectorySchema {};

class CsvDirectory final : public DirectoryModule {
public:
    Ref<DirectorySchema> CreateSchema() override;
    Ref<DirectoryEntry> CreateEntry() override;
    Ref<DirectoryValidator> CreateValidator() override;
    Ref<DirectorySearch> CreateSearch() override;
};

}  // namespace

template <>
inline constexpr auto orvo::class_of<CsvDirectory> =
    describe_class<DirectoryModule>("Csv.Directory", "5b0b7f7e-2a1c-4f3d-8f57-1d0f8f6f3c11");
template <>
inline constexpr auto orvo::class_of<CsvSchema> = describe_class<DirectorySchema>("Csv.Directory");
template <>
inline constexpr auto orvo::class_of<CsvEntry> = describe_class<DirectoryEntry>("Csv.Directory");
template <>
inline constexpr auto orvo::class_of<CsvSearch> = describe_class<DirectorySearch>("Csv.Directory");
template <>
inline constexpr auto orvo::class_of<CsvValidator> =
    describe_class<DirectoryValidator>("Csv.Directory");

namespace {

Ref<DirectorySchema> CsvDirectory::CreateSchema() { return make<CsvSchema>(); }
Ref<DirectoryEntry> CsvDirectory::CreateEntry() { return make<CsvEntry>(); }
Ref<DirectoryValidator> CsvDirectory::CreateValidator() { return make<CsvValidator>(); }
Ref<DirectorySearch> CsvDirectory::CreateSearch() { return make<CsvSearch>(); }

}  // namespace

const ModuleDescription& orvo::this_module() {
    static constexpr ModuleClass classes[] = {module_class<CsvDirectory>()};
    static constexpr ModuleDescription description{"CsvProvider", classes};
    return description;
}
