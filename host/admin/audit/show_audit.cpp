#include "host/admin/audit/show_audit.h"

#include <algorithm>
#include <charconv>
#include <iostream>
#include <thread>

#include "host/admin/audit/audit_lines.h"
#include "host/admin/common/exit_codes.h"
#include "host/admin/common/names.h"
#include "host/admin/common/output.h"
#include "host/admin/common/site_settings.h"
#include "suite/audit/audit_settings.h"
#include "suite/configuration/ini_files.h"
#include "suite/directory/names/distinguished_name.h"

namespace orvo::admin {
namespace {

using directory::DistinguishedName;
using std::chrono::system_clock;

struct AuditColumn {
    const char* name;
    std::string (*text)(const audit::Event& event);
};
constexpr AuditColumn all_columns[] = {
    {"time", [](const audit::Event& event) { return audit::time_text(event.time); }},
    {"event", [](const audit::Event& event) { return to_utf8(event.event); }},
    {"result", [](const audit::Event& event) { return to_utf8(event.result); }},
    {"user", [](const audit::Event& event) { return to_utf8(event.user); }},
    {"by", [](const audit::Event& event) { return to_utf8(event.by); }},
    {"from", [](const audit::Event& event) { return to_utf8(event.from); }},
    {"what", [](const audit::Event& event) { return to_utf8(event.what); }},
    {"server", [](const audit::Event& event) { return to_utf8(event.server); }},
    {"request", [](const audit::Event& event) { return to_utf8(event.request); }},
};

std::vector<const AuditColumn*> chosen_columns(const std::vector<std::string>& names) {
    std::vector<const AuditColumn*> chosen;
    for (const AuditColumn& column : all_columns)
        if (names.empty()) chosen.push_back(&column);
    for (const std::string& name : names) {
        const auto* found = std::ranges::find(all_columns, name, &AuditColumn::name);
        if (found == std::end(all_columns))
            throw Misuse(
                "there is no column \"" + name +
                "\"; there are time, event, result, user, by, from, what, server and request");
        chosen.push_back(found);
    }
    return chosen;
}

// The first value of a name, in the form in which equal ones are the same text.
std::string first_value(const DistinguishedName& name) {
    const std::string above = name.parent().key();
    std::string first = name.key();
    if (!above.empty()) first.resize(first.size() - above.size() - 1);
    return first.substr(first.find('=') + 1);
}

bool is_same_user(const std::string& asked, const Text& user) {
    const auto name = DistinguishedName::try_parse(user);
    const bool is_name = asked.find('=') != std::string::npos;
    const auto wanted =
        DistinguishedName::try_parse(from_utf8(is_name ? asked : "cn=" + as_name_value(asked)));
    if (!name || !wanted || name->depth() == 0) return equal_ignoring_case(from_utf8(asked), user);
    return is_name ? *wanted == *name : first_value(*wanted) == first_value(*name);
}

bool is_same_address(const std::string& asked, const Text& address) {
    const bool is_begin = asked.ends_with('.') || asked.ends_with(':');
    return is_begin ? to_utf8(address).starts_with(asked) : to_utf8(address) == asked;
}

bool is_same_result(const std::string& asked, const Text& result) {
    const std::string text = to_utf8(result);
    return asked == "failed" ? text.starts_with("failed") : text == asked;
}

template <class Same>
bool is_one_of(const std::vector<std::string>& asked, const Text& text, Same is_same) {
    return asked.empty() ||
           std::ranges::any_of(asked, [&](const std::string& one) { return is_same(one, text); });
}

std::filesystem::path file_of_site(const std::filesystem::path& given) {
    const std::filesystem::path site = site_file(given);
    const audit::Settings settings = audit::read_settings(*load_ini_file(site), site);
    if (!settings.file.empty()) return settings.file;
    throw std::runtime_error(
        site.string() +
        (settings.journal
             ? ": the audit goes to the journal; read it with journalctl -t "
               "orvo-audit -o cat"
             : ": the site has no audit; name a File in section [AUDIT] to begin one"));
}

void show_rows(const AuditRequest& request, AuditLines& lines) {
    const auto columns = chosen_columns(request.rows.columns);
    std::vector<Column> heads;
    for (const AuditColumn* column : columns) heads.push_back({column->name});
    const auto writer =
        make_row_writer(request.rows.format, std::cout, std::move(heads), Terminal::of_output());
    while (const auto event = lines.next()) {
        if (!is_asked_for(request, *event)) continue;
        OutputRow row;
        for (const AuditColumn* column : columns) {
            std::string text = column->text(*event);
            row.values.push_back(text.empty() ? std::vector<std::string>()
                                              : std::vector{std::move(text)});
        }
        writer->write(row);
    }
    writer->finish();
}

[[noreturn]] void follow(const AuditRequest& request, AuditLines& lines) {
    constexpr std::chrono::milliseconds between_looks{200};
    for (;;) {
        while (const auto event = lines.next())
            if (is_asked_for(request, *event)) put(std::cout, audit::json_line(*event) + '\n');
        flush_output();
        if (!lines.try_next_file()) std::this_thread::sleep_for(between_looks);
    }
}

}  // namespace

std::optional<system_clock::time_point> try_time_or_age(const std::string& text,
                                                        system_clock::time_point now) {
    if (const auto time = audit::try_time(text)) return time;
    int number = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec != std::errc() || read.ptr + 1 != end || number < 0 || number > 100'000)
        return std::nullopt;
    switch (*read.ptr) {
        case 'm':
            return now - std::chrono::minutes(number);
        case 'h':
            return now - std::chrono::hours(number);
        case 'd':
            return now - std::chrono::days(number);
        default:
            return std::nullopt;
    }
}

bool is_asked_for(const AuditRequest& request, const audit::Event& event) {
    const auto is_same = [](const std::string& one, const Text& text) {
        return one == to_utf8(text);
    };
    return (!request.since || event.time >= *request.since) &&
           (!request.until || event.time < *request.until) &&
           is_one_of(request.events, event.event, is_same) &&
           is_one_of(request.results, event.result, is_same_result) &&
           is_one_of(request.from, event.from, is_same_address) &&
           is_one_of(request.users, event.user, is_same_user) &&
           is_one_of(request.by, event.by, is_same_user);
}

int show_audit(const AuditRequest& request) {
    if (request.rows.format == Format::ldif)
        throw Misuse("events are no entries: --format is table, csv or json");
    AuditLines lines(request.file.empty() ? file_of_site(request.common.site) : request.file);
    if (request.follows) follow(request, lines);
    show_rows(request, lines);
    if (lines.strange() == 0) return done;
    std::cerr << "orvo: " << lines.strange() << " lines are none of an audit, the first of them in "
              << lines.first_strange() << '\n';
    return partly_done;
}

}  // namespace orvo::admin
