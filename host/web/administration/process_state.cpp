#include "host/web/administration/process_state.h"

#include <algorithm>
#include <cstdio>
#include <optional>

#include "host/web/administration/record_rows.h"
#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/environment.h"
#include "platform/values/failure.h"

namespace orvo::web {
namespace {

std::string date_text(const DateParts& date) {
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02dZ", date.year, date.month,
                  date.day, date.hour, date.minute, date.second);
    return text;
}

std::string cell(const Variant& value) {
    if (value.kind() == Kind::date) return date_text(parts_of(value.to<Date>()));
    std::string text = to_utf8(value.to<Text>());
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    return text;
}

std::string table(const Object& record_set) {
    const RecordRows read = RecordRows::read(record_set);
    std::string text = "ok\n";
    const auto append_line = [&](const auto& cells, auto text_of) {
        for (std::size_t i = 0; i < cells.size(); ++i)
            text += (i == 0 ? "" : "\t") + text_of(cells[i]);
        text += '\n';
    };
    append_line(read.columns, [](const Text& name) { return to_utf8(name); });
    for (const auto& row : read.rows) append_line(row, cell);
    return text;
}

std::string end_logins(std::string_view account) {
    const Object logins = create_object(u"TavikAuthFilter.Logins");
    return "ok\nLogins\n" + cell(late::call(logins, u"EndAllOf", {from_utf8(account)})) + '\n';
}

// What stands behind a request's words; nothing for another request.
std::optional<std::string_view> behind(std::string_view words, std::string_view request) {
    if (!request.starts_with(words)) return std::nullopt;
    return request.substr(words.size());
}

std::string answer_of_throttle(std::string_view user_and_address) {
    const std::size_t tab = std::min(user_and_address.find('\t'), user_and_address.size());
    const std::string_view address = user_and_address.substr(tab);
    return table(late::call(create_object(u"OrvoSuite.Throttle"), u"State",
                            {from_utf8(user_and_address.substr(0, tab)),
                             from_utf8(address.substr(std::min<std::size_t>(1, address.size())))})
                     .to<Object>());
}

std::string clear_throttle(const char16_t* method, std::string_view whose) {
    const Object throttle = create_object(u"OrvoSuite.Throttle");
    const bool had_any = late::call(throttle, method, {from_utf8(whose)}).to<bool>();
    return std::string("ok\nCleared\n") + (had_any ? "1" : "0") + '\n';
}

std::string answer(std::string_view request) {
    if (const auto account = behind("logout ", request)) return end_logins(*account);
    if (const auto about = behind("throttle ", request)) return answer_of_throttle(*about);
    if (const auto user = behind("clear throttle ", request))
        return clear_throttle(u"Clear", *user);
    if (const auto address = behind("clear throttled address ", request))
        return clear_throttle(u"ClearAddress", *address);
    const Object servers = create_object(u"OrvoDirectory.LdapServers");
    if (request == "servers") return table(late::call(servers, u"States").to<Object>());
    if (request == "connections") return table(late::call(servers, u"Connections").to<Object>());
    if (request == "clear cache")
        return "ok\nEntries\n" + cell(late::call(servers, u"ClearCache")) + '\n';
    return "failed this host knows no such request\n";
}

}  // namespace

std::string answer_about_process(std::string_view request) noexcept {
    try {
        return answer(request);
    } catch (const Failure& failure) {
        return "failed " + to_utf8(replaced(failure.description, u"\n", u" ")) + '\n';
    } catch (const std::exception& failure) {
        return std::string("failed ") + failure.what() + '\n';
    }
}

std::filesystem::path usual_administration_socket() {
    // systemd names several folders with ":" between them.
    const Text folders = environment_variable("RUNTIME_DIRECTORY");
    if (folders.empty()) return {};
    return std::filesystem::path(split(folders, u":").front()) / "orvo-web.sock";
}

}  // namespace orvo::web
